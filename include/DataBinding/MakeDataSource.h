/// MakeDataSource: builds a data source so that nothing is forgotten.
///
/// The result owns the source until it is handed to a provider. One thread, that of the provider
/// tree.
///
///   provider.AddDataSource(MakeDataSource<CpuSource>(&provider).release());
#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "DataBinding/DataSourceImpl.h"

namespace DataBinding {

/// Ends a data source by IDataSource::Destroy. What that throws is dropped, and the source with it.
struct DATABINDING_API DataSourceDeleter {
  /// Does nothing for null.
  void operator()(IDataSource* source) const noexcept;
};

/// Owns a source until it is released to a provider.
template <class T>
using DataSourcePtr = std::unique_ptr<T, DataSourceDeleter>;

/// Constructs a T from the arguments, sets its provider (which may be null) and post-constructs it.
/// It is not added to the provider:
/// `provider.AddDataSource(MakeDataSource<T>(&provider).release())` does that.
template <std::derived_from<DataSourceImpl> T, class... Args>
[[nodiscard]] DataSourcePtr<T> MakeDataSource(IDataSourceProvider* provider, Args&&... args) {
  DataSourcePtr<T> source(new T(std::forward<Args>(args)...));
  details::DataSourceAccess::Complete(*source, provider);
  return source;
}

}  // namespace DataBinding

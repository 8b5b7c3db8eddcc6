// SPDX-License-Identifier: Apache-2.0
/// Makes data sources so that nothing is forgotten, and hands them to scopes and back so that
/// somebody owns them at any time.
///
/// Emplace makes a source in a scope. MakeDataSource makes one that its DataSourcePtr owns;
/// GiveDataSource hands it to a scope, TakeDataSource gets it back. Exceptions lose no source. One
/// thread, that of the provider tree.
///
///   CpuSource& cpu = Emplace<CpuSource>(scope);
///   if (auto taken = TakeDataSource(scope, &cpu)) GiveDataSource(otherScope, std::move(taken));
#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "DataBinding/datasource/DataSourceImpl.h"

namespace DataBinding {

/// Ends a data source by IDataSource::Destroy. What that throws is dropped, and the source with it.
struct DATABINDING_API DataSourceDeleter {
  /// Does nothing for null.
  void operator()(IDataSource* source) const noexcept;
};

/// Owns a source until it is given to a scope.
template <class T>
using DataSourcePtr = std::unique_ptr<T, DataSourceDeleter>;

namespace details {

/// While one is there, a source is being made on this thread: that it is silent is no mistake.
class DATABINDING_API SourceBeingMade {
 public:
  SourceBeingMade() noexcept;
  SourceBeingMade(const SourceBeingMade&) = delete;
  SourceBeingMade& operator=(const SourceBeingMade&) = delete;
  ~SourceBeingMade();
};

/// The untyped parts of GiveDataSource and TakeDataSource.
///@{
DATABINDING_API void Give(IDataSourceProvider& scope, DataSourcePtr<IDataSource> source);
[[nodiscard]] DATABINDING_API DataSourcePtr<IDataSource> Take(IDataSourceProvider& scope,
                                                              IDataSource* source);
///@}

}  // namespace details

/// Constructs a T from the arguments, sets its provider (which may be null) and post-constructs it.
/// It is not added to the provider: GiveDataSource does that, or Emplace both.
template <std::derived_from<DataSourceImpl> T, class... Args>
[[nodiscard]] DataSourcePtr<T> MakeDataSource(IDataSourceProvider* provider, Args&&... args) {
  const details::SourceBeingMade making;
  DataSourcePtr<T> source(new T(std::forward<Args>(args)...));
  details::DataSourceAccess::Complete(*source, provider);
  return source;
}

/// Adds a source to a scope, which owns it from then on, and tells the source that this is its
/// scope. Returns the source; null does nothing and gives null. When a listener throws while it is
/// connected, the scope owns the source all the same; when there is no memory to add it, it ends.
template <std::derived_from<IDataSource> T>
T* GiveDataSource(IDataSourceProvider& scope, DataSourcePtr<T> source) {
  T* const given = source.get();
  details::Give(scope, std::move(source));
  return given;
}

/// Constructs a T from the arguments, post-constructs it and gives it to the scope. The reference
/// is good as long as the scope holds the source.
template <std::derived_from<DataSourceImpl> T, class... Args>
T& Emplace(IDataSourceProvider& scope, Args&&... args) {
  return *GiveDataSource(scope, MakeDataSource<T>(&scope, std::forward<Args>(args)...));
}

/// Removes a source from the scope and gives it back; it has no scope then. Answers null, and
/// changes nothing, for null and for a source that the scope does not find under its name: one that
/// it does not hold, or that came second to another of that name. When a listener throws while it
/// is disconnected, the source ends.
template <std::derived_from<IDataSource> T>
[[nodiscard]] DataSourcePtr<T> TakeDataSource(IDataSourceProvider& scope, T* source) {
  return DataSourcePtr<T>(details::Take(scope, source).release() == nullptr ? nullptr : source);
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// These functions make data sources so that no step is forgotten, and hand them to scopes and back
/// so that each source has an owner at any time.
///
/// Emplace makes a source in a scope. MakeDataSource makes a source that its DataSourcePtr owns;
/// GiveDataSource hands it to a scope, and TakeDataSource gets it back. An exception loses no
/// source. Call them on one thread, that of the provider tree.
///
///   CpuSource& cpu = Emplace<CpuSource>(scope);
///   if (auto taken = TakeDataSource(scope, &cpu)) GiveDataSource(otherScope, std::move(taken));
#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "DataBinding/datasource/DataSourceImpl.h"

namespace DataBinding {

/// DataSourceDeleter ends a data source by IDataSource::Destroy. An exception from that is dropped;
/// a source whose PreDestroy throws is left alive.
struct DATABINDING_API DataSourceDeleter {
  /// Ends the source. Null does nothing.
  void operator()(IDataSource* source) const noexcept;
};

/// A DataSourcePtr owns a source until the source is given to a scope.
template <class T>
using DataSourcePtr = std::unique_ptr<T, DataSourceDeleter>;

namespace details {

/// While an object of this class exists, a source is being made on its thread, so it is no mistake
/// that the source is silent.
class DATABINDING_API SourceBeingMade {
 public:
  SourceBeingMade() noexcept;
  SourceBeingMade(const SourceBeingMade&) = delete;
  SourceBeingMade& operator=(const SourceBeingMade&) = delete;
  ~SourceBeingMade();
};

/// These are the untyped parts of GiveDataSource and TakeDataSource.
///@{
DATABINDING_API void Give(IDataSourceProvider& scope, DataSourcePtr<IDataSource> source);
[[nodiscard]] DATABINDING_API DataSourcePtr<IDataSource> Take(IDataSourceProvider& scope,
                                                              IDataSource* source);
///@}

}  // namespace details

/// Constructs a T from the arguments, sets its provider (which may be null) and post-constructs it.
/// The source is not added to the provider: GiveDataSource does that, and Emplace does both.
template <std::derived_from<DataSourceImpl> T, class... Args>
[[nodiscard]] DataSourcePtr<T> MakeDataSource(IDataSourceProvider* provider, Args&&... args) {
  const details::SourceBeingMade making;
  DataSourcePtr<T> source(new T(std::forward<Args>(args)...));
  details::DataSourceAccess::Complete(*source, provider);
  return source;
}

/// Adds a source to a scope, which owns it from then on, and tells the source that this is its
/// scope. Returns the source. Null does nothing and returns null. When a listener throws while it
/// is connected, the scope owns the source all the same; when there is no memory to add the source,
/// the source ends. A callback that awaits the end of the addition (WhenConnected) may hand the
/// source on only if it is a DataSourceImpl, and only by TakeDataSource and GiveDataSource.
template <std::derived_from<IDataSource> T>
T* GiveDataSource(IDataSourceProvider& scope, DataSourcePtr<T> source) {
  T* const given = source.get();
  details::Give(scope, std::move(source));
  return given;
}

/// Constructs a T from the arguments, post-constructs it and gives it to the scope. The reference
/// is valid as long as the scope holds the source.
template <std::derived_from<DataSourceImpl> T, class... Args>
T& Emplace(IDataSourceProvider& scope, Args&&... args) {
  return *GiveDataSource(scope, MakeDataSource<T>(&scope, std::forward<Args>(args)...));
}

/// Removes a source from the scope and gives it back; the source has no scope then. Answers null,
/// and changes nothing, for null and for a source that the scope does not find under its name,
/// because the scope does not hold it or because it came second to another source of that name.
/// When a listener throws while it is disconnected, the source ends.
template <std::derived_from<IDataSource> T>
[[nodiscard]] DataSourcePtr<T> TakeDataSource(IDataSourceProvider& scope, T* source) {
  return DataSourcePtr<T>(details::Take(scope, source).release() == nullptr ? nullptr : source);
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
// This file holds the handing over of sources to scopes and back. Listeners run meanwhile, so each
// step looks anew at who owns the source.

#include "DataBinding/datasource/MakeDataSource.h"

#include <utility>

#include "DataBinding/datasource/IDataSourceProvider.h"

namespace DataBinding {

namespace {

void TellScope(IDataSource* source, IDataSourceProvider* scope) {
  if (auto* told = dynamic_cast<DataSourceImpl*>(source)) {
    details::DataSourceAccess::SetProvider(*told, scope);
  }
}

/// Returns true when the source no longer has the scope that was set here, because somebody has
/// told it of another one since.
bool HasMoved(IDataSource* source, const IDataSourceProvider* from) {
  const auto* told = dynamic_cast<const DataSourceImpl*>(source);
  return told != nullptr && told->GetDataSourceProvider() != from;
}

/// Returns true when the scope holds the source. It also holds sources that it does not find by
/// name: ones without a name, and the second one of a name.
bool IsHeld(const IDataSourceProvider& scope, IDataSource* source) {
  if (scope.GetLocalDataSourceInstance(source->GetDataSourceName()) == source) return true;
  bool isFound = false;
  scope.VisitDataSources([&](IDataSource& held) { isFound = isFound || &held == source; });
  return isFound;
}

}  // namespace

void DataSourceDeleter::operator()(IDataSource* source) const noexcept {
  try {
    IDataSource::Destroy(source);
  } catch (...) {  // a source that refuses to be destroyed is left alive
  }
}

namespace details {

void Give(IDataSourceProvider& scope, DataSourcePtr<IDataSource> source) {
  if (source == nullptr) return;
  const WeakReference alive = source->GetLiveness();
  const WeakReference isScopeThere = scope.GetLiveness();
  TellScope(source.get(), &scope);
  try {
    scope.AddDataSource(source.get());
  } catch (...) {
    // The scope took the source over, unless there was no memory for that. It may have let go of it
    // since.
    const bool isOwn = alive.IsValid() && isScopeThere.IsValid() &&
                       !HasMoved(source.get(), &scope) && !IsHeld(scope, source.get());
    if (!isOwn) static_cast<void>(source.release());
    throw;
  }
  static_cast<void>(source.release());
}

DataSourcePtr<IDataSource> Take(IDataSourceProvider& scope, IDataSource* source) {
  if (source == nullptr) return nullptr;
  if (scope.GetLocalDataSourceInstance(source->GetDataSourceName()) != source) return nullptr;
  const WeakReference alive = source->GetLiveness();
  const WeakReference isScopeThere = scope.GetLiveness();
  TellScope(source, nullptr);
  // A callback that awaits the end of the removal may give the source to a scope.
  const auto isOwn = [&] {
    return alive.IsValid() && !HasMoved(source, nullptr) &&
           !(isScopeThere.IsValid() && IsHeld(scope, source));
  };
  try {
    scope.RemoveDataSource(source);
  } catch (...) {
    if (isOwn()) DataSourceDeleter()(source);
    throw;
  }
  if (!isOwn()) return nullptr;
  return DataSourcePtr<IDataSource>(source);
}

}  // namespace details

}  // namespace DataBinding

#include "DataBinding/MakeDataSource.h"

#include <utility>

#include "DataBinding/DataSourceProvider.h"

namespace DataBinding {

namespace {

void TellScope(IDataSource* source, IDataSourceProvider* scope) {
  if (auto* told = dynamic_cast<DataSourceImpl*>(source)) {
    details::DataSourceAccess::SetProvider(*told, scope);
  }
}

/// A scope holds sources that it does not find by name, too: nameless ones and the second of a
/// name.
bool IsHeld(const IDataSourceProvider& scope, IDataSource* source) {
  if (scope.GetLocalDataSourceInstance(source->GetDataSourceName()) == source) return true;
  bool isFound = false;
  if (const auto* provider = dynamic_cast<const DataSourceProvider*>(&scope)) {
    provider->VisitDataSources([&](IDataSource& held) { isFound = isFound || &held == source; });
  }
  return isFound;
}

}  // namespace

void DataSourceDeleter::operator()(IDataSource* source) const noexcept {
  try {
    IDataSource::Destroy(source);
  } catch (...) {  // a source that will not be destroyed is left alive
  }
}

namespace details {

void Give(IDataSourceProvider& scope, DataSourcePtr<IDataSource> source) {
  if (source == nullptr) return;
  const WeakReference alive = source->GetLiveness();
  TellScope(source.get(), &scope);
  try {
    scope.AddDataSource(source.get());
  } catch (...) {
    if (!alive.IsValid() || IsHeld(scope, source.get())) static_cast<void>(source.release());
    throw;
  }
  static_cast<void>(source.release());
}

DataSourcePtr<IDataSource> Take(IDataSourceProvider& scope, IDataSource* source) {
  if (source == nullptr) return nullptr;
  if (scope.GetLocalDataSourceInstance(source->GetDataSourceName()) != source) return nullptr;
  const WeakReference alive = source->GetLiveness();
  try {
    scope.RemoveDataSource(source);
  } catch (...) {
    if (alive.IsValid() && !IsHeld(scope, source)) DataSourceDeleter()(source);
    throw;
  }
  if (!alive.IsValid()) return nullptr;
  TellScope(source, nullptr);
  return DataSourcePtr<IDataSource>(source);
}

}  // namespace details

}  // namespace DataBinding

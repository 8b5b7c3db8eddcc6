#include "DataBinding/DataListener.h"

#include <set>
#include <utility>

#include "DataBinding/IDataSource.h"
#include "DataBinding/IDataSourceProvider.h"

namespace DataBinding {

IDataListener::IDataListener() noexcept = default;
IDataListener::IDataListener(const IDataListener&) noexcept = default;
IDataListener& IDataListener::operator=(const IDataListener&) noexcept = default;
IDataListener::~IDataListener() = default;

DataListener::DataListener() noexcept = default;

DataListener::DataListener(DataListener&& other) noexcept
    : IDataListener(other), entries(std::move(other.entries)), provider(other.provider) {
  other.entries.clear();
}

DataListener& DataListener::operator=(DataListener&& other) noexcept {
  if (this != &other) entries = std::exchange(other.entries, {});
  provider = other.provider;
  return *this;
}

DataListener::~DataListener() {
  if (provider != nullptr) provider->RemoveDataListener(this);
}

void DataListener::AddDataListener(const VtrString& dataSourceName, const VtrString& propertyName,
                                   const RepeatingCallback<void()>& callback) {
  entries.push_back({dataSourceName, propertyName, callback, Subscription()});
}

void DataListener::SetDataSourceProvider(IDataSourceProvider* newProvider) {
  OnDataSourceProviderChanging(newProvider);
  provider = newProvider;
  if (provider == nullptr) return;
  std::set<VtrString> names;
  for (const auto& entry : entries) names.insert(entry.dataSourceName);
  provider->AddDataListener(this, names, true);
}

void DataListener::ConnectToDatasource(IDataSource* source) {
  const VtrString name(source->GetDataSourceName());
  for (auto& entry : entries) {
    if (entry.dataSourceName.CompareNoCase(name) != 0) continue;
    entry.subscription = source->Register(entry.callback, entry.propertyName);
  }
}

void DataListener::DisconnectFromDatasource(IDataSource* source) {
  const VtrString name(source->GetDataSourceName());
  for (auto& entry : entries) {
    if (entry.dataSourceName.CompareNoCase(name) == 0) entry.subscription.Cancel();
  }
}

void DataListener::NotifyDatasourceProviderDestroyed(IDataSourceProvider* gone) {
  if (gone == provider && gone != nullptr) provider = gone->GetParent();
}

}  // namespace DataBinding

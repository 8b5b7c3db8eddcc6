// SPDX-License-Identifier: Apache-2.0
// This file holds DataListener, which connects its entries to sources, and ScopedListener, which
// leaves its scope before it enters another.

#include "DataBinding/datasource/DataListener.h"

#include <set>
#include <utility>

#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/datasource/ScopedListener.h"
#include "DataBinding/datasource/details/ListenerReport.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "KeptName.h"

namespace DataBinding {

IDataListener::IDataListener() noexcept = default;
IDataListener::IDataListener(const IDataListener&) noexcept = default;
IDataListener& IDataListener::operator=(const IDataListener&) noexcept = default;
IDataListener::~IDataListener() = default;
void IDataListener::ReportTo(details::ListenerReport& /*report*/) const {}

class DataListener::EntryLife : public SupportsWeakPtr<EntryLife> {};

DataListener::DataListener() noexcept = default;

DataListener::DataListener(DataListener&& other) noexcept
    : IDataListener(other),
      listenerEntries(std::move(other.listenerEntries)),
      entryLife(std::move(other.entryLife)),
      dataSourceProvider(other.dataSourceProvider),
      providerLiveness(other.providerLiveness) {
  other.listenerEntries.clear();
}

DataListener& DataListener::operator=(DataListener&& other) noexcept {
  if (this != &other) {
    entryLife = std::move(other.entryLife);
    listenerEntries = std::exchange(other.listenerEntries, {});
  }
  dataSourceProvider = other.dataSourceProvider;
  providerLiveness = other.providerLiveness;
  return *this;
}

DataListener::~DataListener() {
  entryLife.reset();
  Leave();
}

/// No code that hears of this may end the listener: either the listener is ending already, or the
/// caller goes on to use it.
void DataListener::Leave() {
  FirstFailure failure;
  failure.Try([&] {
    if (IDataSourceProvider* provider = GetDataSourceProvider()) provider->RemoveDataListener(this);
  });
  for (auto& entry : listenerEntries) entry.subscription.Cancel();
  failure.Rethrow();
}

void DataListener::AddDataListener(const VtrString& dataSourceName, const VtrString& propertyName,
                                   const RepeatingCallback<void()>& callback) {
  if (entryLife == nullptr) entryLife = std::make_unique<EntryLife>();
  const auto run = [callback](const EntryLife& /*alive*/) { callback(); };
  listenerEntries.push_back(
      {dataSourceName, propertyName, BindWeak(entryLife->AsWeakPtr(), run), Subscription()});
}

void DataListener::SetDataSourceProvider(IDataSourceProvider* newProvider) {
  const auto alive = GetLiveness();
  OnDataSourceProviderChanging(newProvider);
  if (!alive.IsValid()) return;
  SetProvider(newProvider);
  if (newProvider == nullptr) return;
  std::set<VtrString> names;
  for (const auto& entry : listenerEntries) names.insert(entry.dataSourceName);
  newProvider->AddDataListener(this, names, true);
}

void DataListener::ReportTo(details::ListenerReport& report) const {
  if (GetDataSourceProvider() != &report.Scope()) return;
  for (const auto& entry : listenerEntries) {
    report.AddEntry(entry.dataSourceName, entry.propertyName, bool{entry.subscription});
  }
}

void DataListener::ConnectToDatasource(IDataSource* source) {
  if (source == nullptr || source->GetDataSourceName() == nullptr) return;
  const KeptName name(source->GetDataSourceName());
  for (auto& entry : listenerEntries) {
    if (entry.dataSourceName.CompareNoCase(name) != 0) continue;
    entry.subscription = source->Register(entry.callback, entry.propertyName);
  }
}

void DataListener::DisconnectFromDatasource(IDataSource* source) {
  if (source == nullptr || source->GetDataSourceName() == nullptr) return;
  const KeptName name(source->GetDataSourceName());
  for (auto& entry : listenerEntries) {
    if (entry.dataSourceName.CompareNoCase(name) == 0) entry.subscription.Cancel();
  }
}

void DataListener::NotifyDatasourceProviderDestroyed(IDataSourceProvider* gone) {
  if (gone != nullptr && gone == GetDataSourceProvider()) SetProvider(gone->GetParent());
}

void DataListener::SetProvider(IDataSourceProvider* newProvider) {
  providerLiveness = newProvider == nullptr ? details::WeakReference() : newProvider->GetLiveness();
  dataSourceProvider = newProvider;
}

void ScopedListener::OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) { Leave(); }

}  // namespace DataBinding

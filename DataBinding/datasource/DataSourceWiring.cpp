// How a provider wires listeners to sources: sources come and go, listeners wait for them by name.

#include <cassert>
#include <utility>

#include "Change.h"
#include "DataBinding/DataSourceProvider.h"
#include "DataBinding/IDataListener.h"
#include "DataBinding/IDataSource.h"
#include "DataBinding/IDataSourceRegistrar.h"
#include "DataBinding/foundation/FirstFailure.h"
#include "KeptName.h"

namespace DataBinding {

void DataSourceProvider::AddDataSource(IDataSource* source) {
  if (source == nullptr) return;
  assert(notifications == 0 && "a listener adds a source while this provider connects it");
  // All that filing needs is made first, so that the source is either taken over or left alone.
  const std::uint64_t number = ++lastAddition;
  std::map<std::uint64_t, IDataSource*> addition{{number, source}};
  std::multimap<IDataSource*, std::uint64_t> wayBack{{source, number}};
  NameMap<IDataSource*> filing;
  ReserveOneMore(sourcesByName);
  Change([&] {
    FirstFailure failure;
    if (const wchar_t* name = source->GetDataSourceName()) {
      const VtrString& key = filing.try_emplace(name, source).first->first;
      failure.Try([&] { ConnectWaiting(key, source); });
    }
    sourcesByName.merge(filing);
    addedSources.merge(addition);
    additions.merge(wayBack);
    failure.Rethrow();
  });
}

void DataSourceProvider::ConnectWaiting(const VtrString& name, IDataSource* source) {
  const Meanwhile notifying(notifications, notifications + 1);
  FirstFailure failure;
  IDataListener* listener = nullptr;
  while ((listener = NextWaiting(name, listener)) != nullptr) {
    failure.Try([&] { listener->ConnectToDatasource(source); });
  }
  failure.Rethrow();
}

void DataSourceProvider::AddDataSources(IDataSource* const* sources, std::size_t count) {
  for (std::size_t i = 0; sources != nullptr && i < count; ++i) AddDataSource(sources[i]);
}

void DataSourceProvider::RemoveDataSource(IDataSource* source) {
  if (source == nullptr || source->GetDataSourceName() == nullptr) return;
  assert(notifications == 0 && "a listener removes a source while this provider connects it");
  const auto filed = sourcesByName.find(VtrStringView(source->GetDataSourceName()));
  if (filed != sourcesByName.end()) LetGo(VtrString(filed->first), source, false);
}

/// Disconnects the listeners, takes a source off and, if it is to end, ends it. The name, which may
/// be the source's own, is the caller's copy.
void DataSourceProvider::LetGo(const VtrString& name, IDataSource* source, bool ends) {
  Change([&] {
    FirstFailure failure;
    failure.Try([&] { DisconnectDataListeners(source); });
    sourcesByName.erase(name);
    ForgetSource(source);
    if (ends) failure.Try([&] { IDataSource::Destroy(source); });
    failure.Rethrow();
  });
}

void DataSourceProvider::RemoveDataSources(IDataSource* const* sources, std::size_t count) {
  for (std::size_t i = 0; sources != nullptr && i < count; ++i) RemoveDataSource(sources[i]);
}

void DataSourceProvider::DisconnectDataListeners(IDataSource* source) {
  const wchar_t* name = source->GetDataSourceName();
  if (name == nullptr) return;
  const KeptName key(name);
  const Meanwhile notifying(notifications, notifications + 1);
  const Meanwhile going(leaving, source);
  FirstFailure failure;
  IDataListener* listener = nullptr;
  while ((listener = NextWaiting(key, listener)) != nullptr) {
    failure.Try([&] { listener->DisconnectFromDatasource(source); });
  }
  failure.Rethrow();
}

/// The next living listener, in order of address, that waits for a name. Looks anew each time,
/// since a listener may end, or end others, while it is called.
IDataListener* DataSourceProvider::NextWaiting(VtrStringView name, IDataListener* after) {
  for (auto found = waiting.find(name); found != waiting.end(); found = waiting.find(name)) {
    const auto next = found->second.upper_bound(after);
    if (next == found->second.end()) return nullptr;
    IDataListener* listener = *next;
    if (listeners.at(listener).liveness.IsValid()) return listener;
    ForgetListener(listener);
  }
  return nullptr;
}

void DataSourceProvider::AddDataListener(IDataListener* listener, const std::set<VtrString>& names,
                                         bool keepUnresolved) {
  if (listener == nullptr) return;
  assert(notifications == 0 && "a listener is added while this provider connects one");
  Change([&] { ConnectAndFile(listener, names, keepUnresolved); });
}

void DataSourceProvider::ConnectAndFile(IDataListener* listener, const std::set<VtrString>& names,
                                        bool keepUnresolved) {
  const auto alive = listener->liveness.GetRef();
  std::set<VtrString> kept;
  std::set<VtrString> forwarded;
  for (const auto& name : names) {
    IDataSource* local = GetLocalDataSourceInstance(name);
    IDataSourceConstructor* constructor = IDataSourceRegistrar::GetInstance().FindConstructor(name);
    if (local != nullptr) {
      const Meanwhile notifying(notifications, notifications + 1);
      listener->ConnectToDatasource(local);
      if (!alive.IsValid()) return;
    }
    const bool servedHere = local != nullptr || CanBuild(constructor);
    if (servedHere || keepUnresolved) kept.insert(kept.end(), name);
    if (!servedHere) forwarded.insert(forwarded.end(), name);
  }
  if (!forwarded.empty() && parent != nullptr) {
    parent->AddDataListener(listener, forwarded, false);
    if (!alive.IsValid()) return;
  }
  FileListener(listener, std::move(kept));
}

void DataSourceProvider::FileListener(IDataListener* listener, std::set<VtrString>&& kept) {
  const auto filed = listeners.find(listener);
  if (filed != listeners.end()) {
    if (filed->second.liveness.IsValid()) return;
    ForgetListener(listener);  // a former listener at the same address
  }
  const auto names = std::make_shared<const std::set<VtrString>>(std::move(kept));
  listeners.emplace(listener, ListenerEntry{names, listener->liveness.GetRef()});
  try {
    for (const auto& name : *names) waiting[name].insert(listener);
  } catch (...) {
    ForgetListener(listener);
    throw;
  }
}

void DataSourceProvider::ForgetListener(IDataListener* listener) {
  const auto entry = listeners.extract(listener);
  if (entry.empty()) return;
  for (const auto& name : *entry.mapped().names) {
    const auto found = waiting.find(name);
    if (found == waiting.end()) continue;
    found->second.erase(listener);
    if (found->second.empty()) waiting.erase(found);
  }
}

void DataSourceProvider::RemoveDataListener(IDataListener* listener) {
  if (parent != nullptr) parent->RemoveDataListener(listener);
  if (listeners.contains(listener)) Change([&] { DisconnectAndForget(listener); });
}

void DataSourceProvider::DisconnectAndForget(IDataListener* listener) {
  const auto filed = listeners.find(listener);
  if (filed == listeners.end()) return;
  if (!filed->second.liveness.IsValid()) return ForgetListener(listener);
  // The entry's names must outlast the calls, in which the listener may end. They are shared, since
  // destructors of listeners come here, which let nothing out.
  const auto names = filed->second.names;
  const auto alive = filed->second.liveness;
  const Meanwhile notifying(notifications, notifications + 1);
  for (const auto& name : *names) {
    IDataSource* source = GetLocalDataSourceInstance(name);
    if (source != nullptr && alive.IsValid()) listener->DisconnectFromDatasource(source);
  }
  ForgetListener(listener);
}

}  // namespace DataBinding

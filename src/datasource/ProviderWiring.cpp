// SPDX-License-Identifier: Apache-2.0
// This file holds how a provider wires listeners to sources: sources come and go, and listeners
// wait for them by name. A listener or a source that is called may end itself, another one or the
// provider, so a walk looks for its next step anew after each call.

#include <cassert>
#include <utility>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/registrar/IDataSourceRegistrar.h"
#include "KeptName.h"
#include "ProviderCalls.h"

namespace DataBinding {

void DataSourceProvider::AddDataSource(IDataSource* source) {
  if (source == nullptr) return;
  assert((calls.notifications == 0 || source == calls.built) &&
         "a listener adds a source while this provider connects it");
  // All that filing needs is made first, so that the source is either taken over or left alone.
  std::set<Addition, BySource> addition{{source, 0}};
  NameMap<IDataSource*> filing;
  filing.max_load_factor(16);  // so that a single node needs no array of buckets
  ReserveOneMore(sourcesByName, calls.arriving.size());
  calls.arriving.reserve(calls.arriving.size() + 1);
  Change([&] {
    FirstFailure failure;
    if (const wchar_t* name = source->GetDataSourceName()) {
      const VtrString& key = filing.try_emplace(name, source).first->first;
      failure.Try([&] { ConnectWaiting(key, source); });
    }
    sourcesByName.merge(filing);
    // Listeners may have made this scope build other sources, which are added before this one.
    auto numbered = addition.extract(addition.begin());
    numbered.value().number = ++lastAddition;
    additions.insert(std::move(numbered));
    if (calls.built == source) calls.built = nullptr;
    failure.Rethrow();
  });
}

void DataSourceProvider::ConnectWaiting(const VtrString& name, IDataSource* source) {
  const Arrival arriving(calls, name);
  const ScopedValue notifying(calls.notifications, calls.notifications + 1);
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
  assert(calls.notifications == 0 && "a listener removes a source while this provider connects it");
  const auto filed = sourcesByName.find(VtrStringView(source->GetDataSourceName()));
  if (filed != sourcesByName.end()) LetGo(VtrString(filed->first), source, false);
}

/// Disconnects the listeners, takes a source off and, if it is to end, ends it. The caller passes a
/// copy of the name, since the text may belong to the source.
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
  if (name == nullptr || !waiting.contains(VtrStringView(name))) return;
  const KeptName key(name);
  Change([&] {
    const ScopedValue notifying(calls.notifications, calls.notifications + 1);
    const ScopedValue going(calls.leaving, source);
    FirstFailure failure;
    IDataListener* listener = nullptr;
    while ((listener = NextWaiting(key, listener)) != nullptr) {
      failure.Try([&] { listener->DisconnectFromDatasource(source); });
    }
    failure.Rethrow();
  });
}

/// Returns the next living listener, in order of address, that waits for a name. It looks anew each
/// time, since a listener may end, or end others, while it is called.
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
  assert(calls.notifications == 0 && "a listener is added while this provider connects one");
  Change([&] { ConnectAndFile(listener, names, keepUnresolved); });
}

void DataSourceProvider::ConnectAndFile(IDataListener* listener, const std::set<VtrString>& names,
                                        bool keepUnresolved) {
  const auto alive = listener->GetLiveness();
  const auto isScopeThere = GetLiveness();
  const std::uint64_t before = lastAddition;
  std::set<VtrString> kept;
  std::set<VtrString> forwarded;
  std::vector<const VtrString*> absent;
  for (const auto& name : names) {
    IDataSource* local = GetLocalDataSourceInstance(name);
    IDataSourceConstructor* constructor = IDataSourceRegistrar::GetInstance().FindConstructor(name);
    if (local != nullptr) Connect(listener, local);
    if (!alive.IsValid()) return;
    const bool servedHere = local != nullptr || CanBuild(constructor);
    if (servedHere || keepUnresolved) kept.insert(kept.end(), name);
    if (!servedHere) forwarded.insert(forwarded.end(), name);
    if (local == nullptr) absent.push_back(&name);
  }
  if (!forwarded.empty() && parent != nullptr) {
    parent->AddDataListener(listener, forwarded, false);
    if (!alive.IsValid() || !isScopeThere.IsValid()) return;
  }
  // The listener was not waiting yet for sources that were built or added here while it was being
  // connected to others.
  if (lastAddition != before) ConnectBuilt(listener, absent, kept);
  if (alive.IsValid()) FileListener(listener, std::move(kept));
}

void DataSourceProvider::Connect(IDataListener* listener, IDataSource* source) {
  const ScopedValue notifying(calls.notifications, calls.notifications + 1);
  listener->ConnectToDatasource(source);
}

/// Connects a listener to sources that have come here meanwhile. It begins anew after each call, in
/// which more may be built.
void DataSourceProvider::ConnectBuilt(IDataListener* listener,
                                      std::vector<const VtrString*>& absent,
                                      const std::set<VtrString>& kept) {
  const auto alive = listener->GetLiveness();
  for (auto next = absent.begin(); alive.IsValid() && next != absent.end();) {
    IDataSource* built = kept.contains(**next) ? GetLocalDataSourceInstance(**next) : nullptr;
    if (built == nullptr) {
      ++next;
      continue;
    }
    absent.erase(next);
    Connect(listener, built);
    next = absent.begin();
  }
}

void DataSourceProvider::FileListener(IDataListener* listener, std::set<VtrString>&& kept) {
  const auto filed = listeners.find(listener);
  if (filed != listeners.end()) {
    if (filed->second.liveness.IsValid()) return;
    ForgetListener(listener);  // it belonged to a former listener at the same address
  }
  const auto names = std::make_shared<const std::set<VtrString>>(std::move(kept));
  listeners.emplace(listener, ListenerEntry{names, listener->GetLiveness()});
  try {
    for (const auto& name : *names) waiting[name].insert(listener);
  } catch (...) {
    ForgetListener(listener);
    throw;
  }
}

/// Takes a listener off and returns what was known of it.
DataSourceProvider::ListenerEntry DataSourceProvider::ForgetListener(IDataListener* listener) {
  auto entry = listeners.extract(listener);
  if (entry.empty()) return {};
  for (const auto& name : *entry.mapped().names) {
    const auto found = waiting.find(name);
    if (found == waiting.end()) continue;
    found->second.erase(listener);
    if (found->second.empty()) waiting.erase(found);
  }
  return std::move(entry.mapped());
}

/// Takes a listener off the enclosing scopes first. A listener that the parent calls meanwhile may
/// end this scope.
void DataSourceProvider::RemoveDataListener(IDataListener* listener) {
  const auto alive = GetLiveness();
  FirstFailure failure;
  failure.Try([&] {
    if (parent != nullptr) parent->RemoveDataListener(listener);
  });
  failure.Try([&] {
    if (!alive.IsValid() || !listeners.contains(listener)) return;
    Change([&] { DisconnectAndForget(listener); });
  });
  failure.Rethrow();
}

/// Takes the listener off first, so that a source that it asks for meanwhile does not connect it
/// again, and then disconnects it. The listener may end in a call. This needs no memory, since
/// destructors of listeners come here.
void DataSourceProvider::DisconnectAndForget(IDataListener* listener) {
  const ListenerEntry entry = ForgetListener(listener);
  if (!entry.liveness.IsValid()) return;
  const ScopedValue notifying(calls.notifications, calls.notifications + 1);
  FirstFailure failure;
  for (const auto& name : *entry.names) {
    IDataSource* source = GetLocalDataSourceInstance(name);
    if (source == nullptr || !entry.liveness.IsValid()) continue;
    failure.Try([&] { listener->DisconnectFromDatasource(source); });
  }
  failure.Rethrow();
}

}  // namespace DataBinding

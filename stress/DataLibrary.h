// SPDX-License-Identifier: Apache-2.0
/// The library's side of the data scripts: it carries out each operation and notes what happens.
#pragma once

#include <algorithm>
#include <deque>
#include <optional>
#include <set>

#include "Data.h"
#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/registrar/DataSourceRegistrar.h"
#include "DataBinding/registrar/IDataSourceConstructor.h"

namespace DataBinding::Stress {

class DataLibrary : public Player<DataLibrary> {
 public:
  static constexpr auto& points = dataPoints;
  static auto Operations() { return DataOperations<DataLibrary>(); }

  DataLibrary() {
    IDataSourceRegistrar::SetInstanceForTests(&registrar);
    for (int i = 0; i < constructorCount; ++i) constructors.emplace_back(*this, i);
    for (int i = 0; i < listenerCount; ++i) listeners[At(i)].emplace(*this, i);
  }
  void End() {
    for (auto& listener : listeners) listener.reset();
    for (int i = 0; i < providerCount; ++i) EndProvider(i, 0, 0);
    while (!sources.empty()) IDataSource::Destroy(sources.begin()->second);
    IDataSourceRegistrar::SetInstanceForTests(nullptr);
  }
  void OpenProvider(int slot, int parent, int categories) {
    if (providers[At(slot)] != nullptr) return;
    IDataSourceProvider* const above = parent == slot ? nullptr : providers[At(parent)];
    const wchar_t* const text = categoryLists[categories].text;
    IDataSourceProvider* opened = nullptr;
    if (slot == 0) {
      registrar.Initialize();
      opened = registrar.GetRootProvider();
    } else if (above != nullptr) {
      opened = above->CreateDataSourceProvider(text, nullptr);
    } else {
      opened = new DataSourceProvider(nullptr, text, nullptr);
    }
    providers[At(slot)] = static_cast<DataSourceProvider*>(opened);
    addresses.push_back(opened);
  }
  void EndProvider(int slot, int, int) {
    if (providers[At(slot)] == nullptr) return;
    ending = slot;
    if (slot == 0) {
      registrar.Shutdown();
    } else {
      IDataSourceProvider::Destroy(providers[At(slot)]);
    }
    providers[At(slot)] = nullptr;
    ending = -1;
  }
  void ShutDownProvider(int slot, int, int) {
    if (auto* provider = Open(slot)) provider->Shutdown();
  }
  void AttachProvider(int slot, int, int) { registrar.AttachProvider(Open(slot)); }
  void DetachProvider(int slot, int, int) { registrar.DetachProvider(Open(slot)); }
  void AddSources(int slot, int name, int extra) {
    auto* const provider = Open(slot);
    if (provider == nullptr) return;
    std::vector<IDataSource*> added{Make(provider, name)};
    if (extra != 0) return provider->AddDataSource(added[0]);
    added.push_back(Make(provider, nameCount - 1 - name));
    provider->AddDataSources(added.data(), added.size());
  }
  void AdoptSource(int slot, int chosen, int) {
    auto* const source = Choose(chosen);
    auto* const provider = Open(slot);
    if (provider != nullptr && source != nullptr && !IsOwned(source)) {
      provider->AddDataSource(source);
    }
  }
  void RemoveSources(int slot, int first, int second) {
    auto* const provider = Open(slot);
    IDataSource* const removed[] = {Choose(first), Choose(second)};
    if (provider != nullptr) provider->RemoveDataSources(removed, 2);
  }
  void EndSource(int chosen, int, int) {
    auto* const source = Choose(chosen);
    if (source != nullptr && !IsOwned(source)) IDataSource::Destroy(source);
  }
  void DeleteSource(int slot, int name, int) {
    auto* const provider = Open(slot);
    if (provider == nullptr) return;
    Tell("answer", provider->DeleteLocalDataSourceInstance(sourceNames[name]) ? 1 : 0);
  }
  void LookUp(int slot, int name, int how) {
    auto* const provider = Open(slot);
    if (provider == nullptr) return;
    const wchar_t* const text = sourceNames[name];
    IDataSource* found = nullptr;
    try {
      found = how == 0   ? &provider->GetDataSourceReference(text)
              : how == 1 ? provider->GetDataSourceInterface(text).As<IDataSource>()
                         : provider->GetDataSource(text);
    } catch (const VtrString&) {
      Tell("threw", name);
    }
    Tell("found", IdOf(found));
  }
  void SetCustomData(int slot, int key, int value) {
    if (auto* provider = Open(slot)) {
      void* const stored = value == 0 ? nullptr : &customValues[value];
      Tell("former", ValueOf(provider->SetCustomData(KeyOf(key), stored)));
    }
  }
  void RegisterConstructor(int which, int, int) {
    registrar.RegisterDataSource(&constructors[At(which)]);
  }
  void UnregisterConstructor(int which, int, int) {
    registrar.UnregisterDataSource(&constructors[At(which)]);
  }
  void ToggleRefusal(int which, int, int) { constructors[At(which)].refuses ^= true; }
  void Want(int which, int name, int property) {
    listeners[At(which)]->AddDataListener(sourceNames[name], propertyNames[property],
                                          Callback("called", which));
  }
  void SetProvider(int which, int slot, int) {
    if (slot != ending) listeners[At(which)]->SetDataSourceProvider(providers[At(slot)]);
  }
  void AddListener(int slot, int which, int names) {
    std::set<VtrString> wanted;
    for (int i = 0; i < nameCount; ++i) {
      if ((names >> i & 1) != 0) wanted.insert(sourceNames[i]);
    }
    auto* const provider = Open(slot);
    if (provider == nullptr) return;
    provider->AddDataListener(&*listeners[At(which)], wanted, (names >> nameCount & 1) != 0);
  }
  void RemoveListener(int slot, int which, int) {
    if (auto* provider = Open(slot)) provider->RemoveDataListener(&*listeners[At(which)]);
  }
  void EndListener(int which, int, int) { listeners[At(which)].emplace(*this, which); }
  void MoveListener(int from, int to, int) { listeners[At(to)]->Take(*listeners[At(from)]); }
  void Watch(int which, int chosen, int property) {
    auto* const source = Choose(chosen);
    if (source == nullptr) return;
    const auto callback = Callback("called", which);
    if (property != anyProperty) {
      watches[At(which)] = source->Register(callback, propertyNames[property]);
      return;
    }
    watches[At(which)] = source->RegisterAny([this, callback](const VtrString& name) {
      Tell("of", static_cast<int>(std::find(propertyNames, propertyNames + propertyCount, name) -
                                  propertyNames));
      callback();
    });
  }
  void CancelWatch(int which, int, int) { watches[At(which)].Cancel(); }
  void Announce(int chosen, int announcement, int) {
    if (auto* source = Choose(chosen)) source->UpdateListeners(announcements[announcement].text);
  }
  void SetProperty(int chosen, int property, int value) {
    auto* const source = Choose(chosen);
    if (source == nullptr) return;
    const auto result = DataBinding::SetProperty<int>(source, propertyNames[property], value);
    Tell("set", result.changed ? 1 : 0, static_cast<int>(result.error));
  }
  void Observe() {
    for (int i = 0; i < providerCount; ++i) {
      if (providers[At(i)] != nullptr) ObserveProvider(i, *providers[At(i)]);
    }
    for (const auto* name : sourceNames) {
      const auto* found = static_cast<Constructor*>(registrar.FindConstructor(name));
      Tell("constructor", found == nullptr ? -1 : found->which);
    }
    Tell("root", registrar.GetRootProvider() == nullptr ? -1 : 0);
    for (const auto& [id, source] : sources) {
      Tell("values", *source->a * 10 + *source->b, *source->c);
      Tell("listened", id, static_cast<int>(source->GetRegisteredProperties().size()));
      for (const auto* property : propertyNames) {
        const bool any = source->AreListenersAvailable(property);
        Tell("listeners", any ? 1 : 0, static_cast<int>(source->GetNumRegistered(property)));
      }
    }
    for (const auto& listener : listeners) Tell("under", SlotOf(listener->GetDataSourceProvider()));
  }

  /// The addresses of the providers, in the order in which they were opened. Addresses fix the
  /// order of calls, so the model has to know them.
  std::deque<const void*> addresses;

 private:
  class Source final : public NamedDataSource {
   public:
    Source(DataLibrary& owner, int name) : NamedDataSource(sourceNames[name]), world(owner) {
      MakeEventSource(L"E");
      world.sources[id] = this;
    }
    ~Source() override {
      world.sources.erase(id);
      world.Tell("ended", id);
    }
    using NamedDataSource::GetNumRegistered;

   private:
    DataLibrary& world;

   public:
    int id = ++world.lastSource;
    Property<int> a{this, L"A"};
    Property<int> b{this, L"B"};
    Property<int> c{this, L"C"};
  };
  class Listener final : public DataListener {
   public:
    Listener(DataLibrary& owner, int number) : world(owner), which(number) {}
    void Take(Listener& other) { DataListener::operator=(std::move(other)); }
    using DataListener::AddDataListener;
    using DataListener::GetDataSourceProvider;
    void ConnectToDatasource(IDataSource* source) override {
      DataListener::ConnectToDatasource(source);
      world.Happen("connected", which, IdOf(source), Place::Wiring);
    }
    void DisconnectFromDatasource(IDataSource* source) override {
      DataListener::DisconnectFromDatasource(source);
      world.Happen("disconnected", which, IdOf(source), Place::Wiring);
    }
    void NotifyDatasourceProviderDestroyed(IDataSourceProvider* provider) override {
      DataListener::NotifyDatasourceProviderDestroyed(provider);
      world.Happen("gone", which, world.SlotOf(provider), Place::Parting);
    }
    void OnDataSourceProviderChanging(IDataSourceProvider* provider) override {
      world.Tell("changing", which, world.SlotOf(provider));
    }

   private:
    DataLibrary& world;
    int which;
  };
  class Constructor final : public IDataSourceConstructor {
   public:
    Constructor(DataLibrary& owner, int number) : which(number), world(owner) {}
    ~Constructor() override = default;
    void OnRegistered() override { world.Tell("registered", which); }
    void OnUnregistered() override { world.Tell("unregistered", which); }
    const wchar_t* GetName() override { return sourceNames[constructorTraits[which].name]; }
    IDataSource* CreateDataSource(IDataSourceProvider* provider) override {
      world.Tell("asked", which, world.SlotOf(provider));
      return refuses ? nullptr : world.Make(provider, constructorTraits[which].name);
    }
    void OnProviderAttached(IDataSourceProvider* provider) override {
      world.Tell("attached", which, world.SlotOf(provider));
    }
    int GetPlacement() override { return constructorTraits[which].placement; }
    const wchar_t* GetCategories() override { return constructorTraits[which].categories.text; }

    int which;
    bool refuses = false;

   private:
    DataLibrary& world;
  };

  static Guid KeyOf(int key) { return Guid{static_cast<std::uint32_t>(key % 2)}; }
  int ValueOf(const void* stored) const {
    return stored == nullptr ? 0 : static_cast<int>(static_cast<const int*>(stored) - customValues);
  }
  static int IdOf(IDataSource* source) {
    return source == nullptr ? 0 : static_cast<Source*>(source)->id;
  }
  DataSourceProvider* Open(int slot) { return slot == ending ? nullptr : providers[At(slot)]; }
  /// The root is not yet known while the constructors are offered it.
  int SlotOf(const IDataSourceProvider* provider) const {
    if (provider == nullptr) return -1;
    const auto* const found = std::ranges::find(providers, provider);
    return found == providers.end() ? 0 : static_cast<int>(found - providers.begin());
  }
  IDataSource* Make(IDataSourceProvider* provider, int name) {
    return MakeDataSource<Source>(provider, *this, name).release();
  }
  Source* Choose(int chosen) const {
    if (sources.empty()) return nullptr;
    return std::next(sources.begin(), chosen % static_cast<int>(sources.size()))->second;
  }
  bool IsOwned(const IDataSource* source) const {
    bool owned = false;
    for (const auto* provider : providers) {
      if (provider != nullptr) {
        provider->VisitDataSources([&](IDataSource& held) { owned |= &held == source; });
      }
    }
    return owned;
  }
  void ObserveProvider(int slot, const DataSourceProvider& provider) {
    Tell("parent", slot, SlotOf(provider.GetParent()));
    for (const auto* name : sourceNames)
      Tell("here", IdOf(provider.GetLocalDataSourceInstance(name)));
    provider.VisitDataSources([&](IDataSource& source) { Tell("owns", IdOf(&source)); });
    std::set<int> children;
    provider.VisitChildren([&](IDataSourceProvider& child) { children.insert(SlotOf(&child)); });
    for (const int child : children) Tell("child", child);
    provider.VisitDataListeners([&](IDataListener& listener) {
      const auto isIt = [&](const auto& candidate) { return &*candidate == &listener; };
      Tell("knows", static_cast<int>(std::ranges::find_if(listeners, isIt) - listeners.begin()));
    });
    for (const auto& categories : categoryLists) {
      Tell("matches", provider.MatchCategory(categories.text) ? 1 : 0);
    }
    for (const auto& name : provider.GetRegisteredDataSources()) {
      const auto isIt = [&](const wchar_t* candidate) { return name == candidate; };
      Tell("offers", static_cast<int>(std::ranges::find_if(sourceNames, isIt) - sourceNames));
    }
    for (int key = 0; key < 2; ++key) Tell("data", ValueOf(provider.GetCustomData(KeyOf(key))));
  }

  int customValues[4]{};
  std::map<int, Source*> sources;
  std::deque<Constructor> constructors;
  DataSourceRegistrar registrar;
  std::array<DataSourceProvider*, providerCount> providers{};
  std::array<std::optional<Listener>, listenerCount> listeners;
  std::array<Subscription, watchCount> watches;
  int ending = -1;
  int lastSource = 0;
};

}  // namespace DataBinding::Stress

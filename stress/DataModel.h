// SPDX-License-Identifier: Apache-2.0
/// A model of the library's data sources, scopes and listeners, written as plainly as it can be:
/// they are numbers in maps, and every question is answered by searching.
#pragma once

#include <algorithm>
#include <deque>
#include <optional>
#include <set>

#include "SourceModel.h"

namespace DataBinding::Stress {

class DataModel : public SourceModel {
 public:
  static constexpr auto& points = dataPoints;
  static auto Operations() { return DataOperations<DataModel>(); }

  template <class Library>
  explicit DataModel(Library& library) : addresses(library.addresses) {}
  void End() {
    for (int i = 0; i < listenerCount; ++i) EndListener(i, 0, 0);
    for (int i = 0; i < providerCount; ++i) EndProvider(i, 0, 0);
    while (!sources.empty()) Destroy(sources.begin()->first);
  }
  void OpenProvider(int slot, int parent, int categories) {
    if (IsThere(slot)) return;
    Provider& opened = providers[slot];
    opened.address = addresses.front();
    addresses.pop_front();
    opened.categories = categoryLists[slot == 0 ? rootCategories : categories].letters;
    if (slot == 0) return AttachProvider(0, 0, 0);
    if (parent != slot && IsThere(parent)) opened.parent = parent;
  }
  void EndProvider(int slot, int, int) {
    if (!IsThere(slot)) return;
    ending = slot;
    ShutDown(slot);
    ShutDown(slot);  // once more, since the last listeners may have added sources
    ending = -1;
    std::erase(attached, slot);
    providers.erase(slot);
    for (auto& listener : listeners) {
      if (listener.provider == slot) listener.provider = -1;
    }
  }
  void ShutDownProvider(int slot, int, int) {
    if (IsOpen(slot)) ShutDown(slot);
  }
  void AttachProvider(int slot, int, int) {
    if (!IsOpen(slot)) return;
    if (std::ranges::count(attached, slot) == 0) attached.push_back(slot);
    std::ranges::sort(attached, std::less(), [this](int i) { return providers[i].address; });
    for (const char category : providers[slot].categories) {
      for (const int which : listed[category]) Tell("attached", which, slot);
    }
  }
  void DetachProvider(int slot, int, int) {
    if (!IsOpen(slot) && slot != ending) return;
    if (std::ranges::count(attached, slot) == 0) return;
    for (const auto& [name, which] : std::map(filed)) DeleteLocal(slot, name);
    std::erase(attached, slot);
  }
  void AddSources(int slot, int name, int extra) {
    if (!IsOpen(slot)) return;
    const int first = Make(name);
    const int second = extra == 0 ? Make(nameCount - 1 - name) : 0;
    Add(slot, first);
    if (second != 0) Add(slot, second);
  }
  void AdoptSource(int slot, int chosen, int) {
    const int source = Choose(chosen);
    if (IsOpen(slot) && source != 0 && !IsOwned(source)) Add(slot, source);
  }
  void RemoveSources(int slot, int first, int second) {
    if (!IsOpen(slot)) return;
    for (const int source : {Choose(first), Choose(second)}) {
      if (source == 0 || !providers[slot].byName.contains(sources[source].name)) continue;
      DisconnectAll(slot, source);
      providers[slot].byName.erase(sources[source].name);
      std::erase(providers[slot].owned, source);
    }
  }
  void EndSource(int chosen, int, int) {
    const int source = Choose(chosen);
    if (source != 0 && !IsOwned(source)) Destroy(source);
  }
  void DeleteSource(int slot, int name, int) {
    if (!IsOpen(slot)) return;
    DeleteLocal(slot, name);
    Tell("answer", 0);
  }
  void LookUp(int slot, int name, int how) {
    if (!IsOpen(slot)) return;
    const int found = Find(slot, name);
    if (found == 0 && how == 0) Tell("threw", name);
    Tell("found", found);
  }
  void SetCustomData(int slot, int key, int value) {
    if (!IsOpen(slot)) return;
    Tell("former", std::exchange(providers[slot].custom[key % 2], value));
  }
  void RegisterConstructor(int which, int, int) {
    const auto& [name, placement, categories] = constructorTraits[which];
    if (filed.try_emplace(name, which).second) Tell("registered", which);
    for (const int slot : attached) {
      if (Match(categories.letters, providers[slot].categories)) Tell("attached", which, slot);
    }
    for (const char category : categories.letters) {
      if (placement == 1) listed[category].push_front(which);
      if (placement == 2) listed[category].push_back(which);
    }
  }
  void UnregisterConstructor(int which, int, int) {
    const int name = constructorTraits[which].name;
    if (!filed.contains(name)) return;
    for (const char c : constructorTraits[which].categories.letters) std::erase(listed[c], which);
    Tell("unregistered", filed[name]);
    filed.erase(name);
    for (const int slot : attached) DeleteLocal(slot, name);
  }
  void ToggleRefusal(int which, int, int) { refuses[which] ^= true; }
  void Want(int which, int name, int property) {
    listeners[which].entries.push_back({name, property, {0, which, ++lastCallback}});
  }
  void SetProvider(int which, int slot, int) {
    if (slot == ending) return;
    const int target = IsThere(slot) ? slot : -1;
    Tell("changing", which, target);
    listeners[which].provider = target;
    std::set<int> names;
    for (const Entry& entry : listeners[which].entries) names.insert(entry.name);
    if (target != -1) Add(target, which, names, true);
  }
  void AddListener(int slot, int which, int names) {
    std::set<int> wanted;
    for (int i = 0; i < nameCount; ++i) {
      if ((names >> i & 1) != 0) wanted.insert(i);
    }
    if (IsOpen(slot)) Add(slot, which, wanted, (names >> nameCount & 1) != 0);
  }
  void RemoveListener(int slot, int which, int) {
    if (IsOpen(slot)) Remove(slot, which);
  }
  void EndListener(int which, int, int) {
    EndEntries(which);
    for (auto& [slot, provider] : providers) provider.listeners.erase(which);
    listeners[which] = {{}, -1, listeners[which].life + 1};
  }
  void MoveListener(int from, int to, int) {
    if (from == to) return;
    EndEntries(to);
    listeners[to].entries = std::exchange(listeners[from].entries, {});
    listeners[to].provider = listeners[from].provider;
  }
  void Observe() {
    for (const auto& [slot, provider] : providers) ObserveProvider(slot, provider);
    for (int i = 0; i < nameCount; ++i) Tell("constructor", filed.contains(i) ? filed[i] : -1);
    Tell("root", IsThere(0) ? 0 : -1);
    ObserveSources();
    for (const auto& listener : listeners) Tell("under", listener.provider);
  }

 private:
  struct Provider {
    int parent = -1;
    std::string_view categories;
    const void* address = nullptr;
    std::map<int, int> byName = {};
    std::set<int> arriving = {};  // the names of sources that are being added
    std::vector<int> owned = {};
    std::map<int, int> custom = {};
    std::map<int, std::set<int>> listeners = {};
    bool wasShutDown = false;
  };
  struct Entry {
    int name;
    int property;
    Registration registration;
  };
  struct Listener {
    std::vector<Entry> entries;
    int provider = -1;
    int life = 0;
  };

  void EndEntries(int which) {
    for (const Entry& entry : listeners[which].entries) {
      Cancel(entry.registration.token);
      ended.insert(entry.registration.callback);
    }
  }
  [[nodiscard]] bool IsThere(int slot) const { return providers.contains(slot); }
  [[nodiscard]] bool IsOpen(int slot) const { return IsThere(slot) && slot != ending; }
  static bool Match(std::string_view one, std::string_view other) {
    return one.find_first_of(other) != one.npos;
  }
  /// Listeners take Doc and doc for one name.
  static int Folded(int name) { return name == 4 ? 1 : name; }
  [[nodiscard]] bool IsOwned(int source) const {
    return std::ranges::any_of(providers, [&](const auto& each) {
      return std::ranges::count(each.second.owned, source) != 0;
    });
  }
  bool CanBuild(int slot, int name) {
    if (!filed.contains(name)) return false;
    return Match(constructorTraits[filed[name]].categories.letters, providers[slot].categories);
  }
  int Find(int slot, int name) {
    if (providers[slot].byName.contains(name)) return providers[slot].byName[name];
    if (CanBuild(slot, name)) {
      if (providers[slot].arriving.contains(name)) return 0;
      Tell("asked", filed[name], slot);
      if (!refuses[filed[name]]) {
        const int built = Make(name);
        Add(slot, built);
        return built;
      }
    }
    return providers[slot].parent == -1 ? 0 : Find(providers[slot].parent, name);
  }
  void Add(int slot, int source) {
    const int name = sources[source].name;
    providers[slot].arriving.insert(name);
    for (int i = 0; i < listenerCount; ++i) {
      if (Waits(slot, i, name)) Connect(i, source);
    }
    providers[slot].arriving.erase(name);
    providers[slot].byName.try_emplace(name, source);
    providers[slot].owned.push_back(source);
  }
  bool Waits(int slot, int which, int name) {
    const auto& known = providers[slot].listeners;
    return known.contains(which) && known.at(which).contains(name);
  }
  void DisconnectAll(int slot, int source) {
    for (int i = 0; i < listenerCount; ++i) {
      if (Waits(slot, i, sources[source].name)) Disconnect(i, source);
    }
  }
  void DeleteLocal(int slot, int name) {
    if (!providers[slot].byName.contains(name)) return;
    const int source = providers[slot].byName[name];
    DisconnectAll(slot, source);
    providers[slot].byName.erase(name);
    std::erase(providers[slot].owned, source);
    Destroy(source);
  }
  void ShutDown(int slot) {
    Provider& provider = providers[slot];
    provider.byName.clear();
    const auto owned = std::exchange(provider.owned, {});
    for (auto last = owned.rbegin(); last != owned.rend(); ++last) {
      DisconnectAll(slot, *last);
      Destroy(*last);
    }
    if (!provider.wasShutDown) DetachProvider(slot, 0, 0);
    std::vector<std::pair<int, int>> told;
    for (const auto& [which, names] : provider.listeners) {
      told.emplace_back(which, listeners[which].life);
    }
    for (const auto& [which, life] : told) {
      if (listeners[which].life != life) continue;
      if (listeners[which].provider == slot) listeners[which].provider = provider.parent;
      Happen("gone", which, slot, Place::Parting);
    }
    provider.listeners.clear();
    provider.parent = -1;
    for (auto& [other, child] : providers) {
      if (child.parent == slot) child.parent = -1;
    }
    provider.wasShutDown = true;
  }
  bool Add(int slot, int which, const std::set<int>& names, bool keepsUnresolved) {
    const int life = listeners[which].life;
    std::set<int> kept;
    std::set<int> forwarded;
    std::set<int> absent;
    for (const int name : names) {
      const bool isHere = providers[slot].byName.contains(name);
      if (isHere) Connect(which, providers[slot].byName[name]);
      if (listeners[which].life != life) return false;
      const bool isServed = isHere || CanBuild(slot, name);
      if (isServed || keepsUnresolved) kept.insert(name);
      if (!isServed) forwarded.insert(name);
      if (!isHere && kept.contains(name)) absent.insert(name);
    }
    const int parent = providers[slot].parent;
    if (!forwarded.empty() && parent != -1 && !Add(parent, which, forwarded, false)) return false;
    // A source that was built meanwhile did not find the listener waiting: connect it now.
    for (auto next = absent.begin(); next != absent.end();) {
      const auto built = providers[slot].byName.find(*next++);
      if (built == providers[slot].byName.end()) continue;
      absent.erase(built->first);
      Connect(which, built->second);
      if (listeners[which].life != life) return false;
      next = absent.begin();
    }
    providers[slot].listeners.try_emplace(which, kept);
    return true;
  }
  void Remove(int slot, int which) {
    const int life = listeners[which].life;
    if (providers[slot].parent != -1) Remove(providers[slot].parent, which);
    if (!providers[slot].listeners.contains(which)) return;
    const auto kept = providers[slot].listeners.extract(which);
    for (const int name : kept.mapped()) {
      if (!providers[slot].byName.contains(name) || listeners[which].life != life) continue;
      Disconnect(which, providers[slot].byName[name]);
    }
  }
  void Connect(int which, int source) {
    for (Entry& entry : listeners[which].entries) {
      if (Folded(entry.name) != Folded(sources[source].name)) continue;
      const int former = entry.registration.token;
      Register(source, entry.property, entry.registration);
      Cancel(former);
    }
    Happen("connected", which, source, Place::Wiring);
  }
  void Disconnect(int which, int source) {
    for (const Entry& entry : listeners[which].entries) {
      if (Folded(entry.name) == Folded(sources[source].name)) Cancel(entry.registration.token);
    }
    Happen("disconnected", which, source, Place::Wiring);
  }
  void ObserveProvider(int slot, const Provider& provider) {
    Tell("parent", slot, provider.parent);
    for (int i = 0; i < nameCount; ++i) {
      Tell("here", provider.byName.contains(i) ? provider.byName.at(i) : 0);
    }
    for (const int source : provider.owned) Tell("owns", source);
    for (const auto& [other, child] : providers) {
      if (child.parent == slot) Tell("child", other);
    }
    for (const auto& [which, names] : provider.listeners) Tell("knows", which);
    for (const auto& each : categoryLists) {
      Tell("matches", Match(each.letters, provider.categories) ? 1 : 0);
    }
    std::string combined;
    for (int i = slot; i != -1; i = providers[i].parent) combined += providers[i].categories;
    for (const auto& [name, which] : filed) {
      const auto letters = constructorTraits[which].categories.letters;
      if (combined.empty() || Match(letters, combined)) Tell("offers", name);
    }
    for (int key = 0; key < 2; ++key) Tell("data", CustomData(slot, key));
  }
  int CustomData(int slot, int key) {
    if (slot == -1) return 0;
    const auto found = providers[slot].custom.find(key);
    return found != providers[slot].custom.end() ? found->second
                                                 : CustomData(providers[slot].parent, key);
  }

  std::deque<const void*>& addresses;
  std::map<int, Provider> providers;
  Listener listeners[listenerCount];
  std::map<int, int> filed;  // constructors by the names of their sources
  std::map<char, std::deque<int>> listed;
  std::vector<int> attached;  // in order of address
  std::map<int, bool> refuses;
  int ending = -1;
};

}  // namespace DataBinding::Stress

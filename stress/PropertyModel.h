// SPDX-License-Identifier: Apache-2.0
/// A model of properties and binds, written as plainly as it can be: which callbacks are told of a
/// change, and in which order.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <tuple>

#include "DataBinding/reflection/PropertyResult.h"
#include "Properties.h"

namespace DataBinding::Stress {

class PropertyModel : public Player<PropertyModel> {
 public:
  static constexpr auto& points = propertyPoints;
  static auto Operations() { return PropertyOperations<PropertyModel>(); }

  template <class Library>
  explicit PropertyModel(Library& /*library*/) {}
  void End() {
    for (int i = 0; i < batchCount; ++i) CloseBatch(i, 0, 0);
    for (int i = 0; i < scopeCount; ++i) EndScope(i, 0, 0);
    while (!sources.empty()) EndSource(0, 0, 0);
    EndBind(0, 0, 0);
  }
  void Make(int name, int slot, int followed) {
    if (sources.size() == mostSources) return;
    sources[++lastSource] = {name, Choose(followed)};
    if (!scopes.contains(slot) || Holder(slot, name) != 0) return;
    InScope(slot, [&] { scopes[slot].push_back(lastSource); });
  }
  void TakeSource(int chosen, int, int) {
    const int source = Choose(chosen);
    for (auto& [slot, held] : scopes) {
      if (std::ranges::count(held, source) == 0) continue;
      return InScope(slot, [&, &from = held] { std::erase(from, source); });
    }
  }
  void EndSource(int chosen, int, int) {
    const int source = Choose(chosen);
    TakeSource(chosen, 0, 0);
    if (source != 0) Destroy(source);
  }
  void OpenScope(int slot, int, int) {
    if (scopes.try_emplace(slot).second) isInner[slot] = scopes.contains(slot - 1);
  }
  void EndScope(int slot, int, int) {
    if (!scopes.contains(slot)) return;
    InScope(slot, [&] {
      while (!scopes[slot].empty()) {
        const int source = scopes[slot].back();
        scopes[slot].pop_back();
        Update();
        Destroy(source);
      }
      isInner[slot + 1] = false;
      scopes.erase(slot);
      if (bind != nullptr && bind->slot == slot) bind->slot = -1;
    });
  }
  void Set(int chosen, int property, int value) {
    if (const int source = Choose(chosen)) Answer(Store({source, property}, value));
  }
  void OpenBatch(int slot, int chosen, int) {
    const int source = Choose(chosen);
    if (source != 0 && batches.try_emplace(slot, source).second) ++sources[source].batches;
  }
  void CloseBatch(int slot, int, int) {
    const auto closed = batches.extract(slot);
    if (closed.empty()) return;
    const auto source = sources.find(closed.mapped());
    if (source == sources.end() || --source->second.batches == 0) Announce(closed.mapped());
  }
  void Watch(int which, int chosen, int property) {
    const int source = Choose(chosen);
    if (source == 0) return;
    const int former = std::exchange(watches[which], ++lastToken);
    sources[source].listeners[property].push_back({lastToken, Callback("called", which)});
    Cancel(former);
  }
  /// A bind that is made while a scope calls its listeners waits until the scope has finished.
  void Bind(int slot, int name, int property) {
    EndBind(0, 0, 0);
    bind = std::make_shared<Bound>(Bound{scopes.contains(slot) ? slot : -1, name, property});
    const auto chain = Chain();
    bind->waits = std::ranges::count(chain, calling) != 0;
    Update();
  }
  void EndBind(int, int, int) {
    if (bind == nullptr) return;
    Cancel(bind->token);
    bind->subscribers.clear();
    bind = nullptr;
  }
  void Hear(int which, int, int) {
    if (bind == nullptr) return;
    bind->subscribers.push_back({++lastToken, Callback("heard", which)});
    Cancel(std::exchange(ears[which], lastToken));
  }
  void Join(int which, int, int) {
    if (bind == nullptr) return;
    const auto made = std::make_shared<Joined>(Joined{which, bind, ++lastToken});
    bind->subscribers.push_back({made->token, [this, made] { Show(*made); }});
    Show(*made);
    End(std::exchange(joins[which], made));
  }
  void Commit(int which, int typed, int) {
    widgets[which] = typed;
    if (const auto join = joins[which]) Answer(Commit(*join, typed));
  }
  void EndJoin(int which, int, int) { End(std::exchange(joins[which], nullptr)); }
  void Observe() {
    for (auto& [id, source] : sources) {
      Tell("values", source.values[A] * 10 + source.values[B], Value(id, C) * 1000 + Value(id, D));
      for (int i = 0; i < memberCount; ++i)
        Tell("listeners", id, static_cast<int>(source.listeners[i].size()));
    }
    if (bind != nullptr) Tell("bound", bind->source == 0 ? 0 : 1, BoundValue().value_or(-1));
    for (const auto& [which, value] : widgets) Tell("widget", value);
  }

 private:
  using Property = std::pair<int, int>;  // of a source
  using Result = std::pair<bool, PropertyError>;
  struct Registration {
    int token;
    std::function<void()> run;
  };
  using Registrations = std::vector<Registration>;
  struct Source {
    int name = 0;
    int followed = 0;
    std::map<int, int> values = {};
    std::map<int, Registrations> listeners = {};
    int batches = 0;
    std::vector<int> noted = {};
  };
  struct Bound {
    int slot;
    int name;
    int property;
    bool waits = false;
    int source = 0;
    int token = 0;
    Registrations subscribers = {};
  };
  enum class Step { None, Committing, Setting, Changed, Telling };
  struct Joined {
    int which;
    std::shared_ptr<Bound> bound;
    int token;
    Step step = Step::None;
    bool isEdited = true;
    std::optional<int> shown = {};
  };

  [[nodiscard]] int Choose(int chosen) const {
    if (sources.empty()) return 0;
    return std::next(sources.begin(), chosen % static_cast<int>(sources.size()))->first;
  }
  void Answer(const Result& result) {
    Tell("set", result.first ? 1 : 0, static_cast<int>(result.second));
  }
  void Cancel(int token) {
    const auto isIt = [token](const auto& each) { return each.token == token; };
    for (auto& [id, source] : sources) {
      for (auto& [property, list] : source.listeners) std::erase_if(list, isIt);
    }
    if (bind != nullptr) std::erase_if(bind->subscribers, isIt);
  }
  int Value(int id, int property) {
    const auto source = sources.find(id);
    if (source == sources.end()) return 0;
    if (property <= B) return source->second.values[property];
    if (property == C) return Value(id, A) + Value(id, B);
    return Value(id, C) + Value(source->second.followed, B) + Value(source->second.followed, D);
  }
  Result Store(Property property, int value) {
    const auto [id, index] = property;
    if (index > B) return {false, PropertyError::ReadOnly};
    if (index == A && value == refused) return {false, PropertyError::Refused};
    if (std::exchange(sources[id].values[index], value) == value) return {};
    if (index == B) Happen("changed", sources[id].name, value, Place::Anywhere);
    if (!sources.contains(id)) return {true, PropertyError::None};
    Note(property);
    if (sources[id].batches == 0) Announce(id);
    return {true, PropertyError::None};
  }
  /// Properties that waited only for properties of this source need not wait any more.
  void Destroy(int id) {
    const auto noted = sources[id].noted;
    sources.erase(id);
    for (const int property : noted) {
      for (const Property& follower : Followers({id, property})) {
        if (IsNoted(follower)) MakeDue(follower);
      }
    }
    std::erase_if(due, [id](const auto& each) { return each.first.first == id; });
    Tell("ended", id);
  }

  [[nodiscard]] std::vector<Property> Followed(Property property) const {
    const auto [id, index] = property;
    const int followed = sources.at(id).followed;
    if (index <= B) return {};
    if (index == C || followed == 0) return {{id, index == C ? A : C}, {id, B}};
    return {{id, C}, {followed, B}, {followed, D}};
  }
  [[nodiscard]] std::vector<Property> Followers(Property property) const {
    std::vector<Property> followers;
    for (const auto& [id, source] : sources) {
      for (const Property& candidate : {Property(id, C), Property(id, D)}) {
        const auto all = Followed(candidate);
        if (std::ranges::count(all, property) != 0) followers.push_back(candidate);
      }
    }
    return followers;
  }
  [[nodiscard]] bool IsNoted(Property property) const {
    const auto found = sources.find(property.first);
    return found != sources.end() && std::ranges::count(found->second.noted, property.second) != 0;
  }
  void Note(Property property) {
    if (IsNoted(property)) return;
    due.erase(property);
    sources[property.first].noted.push_back(property.second);
    if (property.second <= B) changes[property] = ++lastChange;
  }
  void MakeDue(Property property) {
    std::erase(sources[property.first].noted, property.second);
    due[property] = std::max(due[property], announcements);
  }
  /// Orders the properties that are due. Those of the innermost announcement come first: the ones
  /// that were set, in the order of their changes, and then the computed ones, the oldest first.
  auto Rank(const std::pair<const Property, int>& each) {
    const bool isComputed = each.first.second > B;
    return std::tuple(-each.second, isComputed, isComputed ? 0 : changes[each.first], each.first);
  }
  void Announce(int id) {
    const ScopedValue nested(announcements, announcements + 1);
    if (sources.contains(id)) {
      for (const int property : std::vector(sources[id].noted)) MakeDue({id, property});
    }
    while (!due.empty()) {
      const auto first =
          std::ranges::min_element(due, {}, [this](const auto& each) { return Rank(each); });
      if (first->second < announcements && announcements > 1) return;
      const Property next = first->first;
      due.erase(first);
      AnnounceOne(next);
    }
  }
  void AnnounceOne(Property property) {
    const auto all = Followed(property);
    const bool waits = std::ranges::any_of(all, [this](auto each) { return IsNoted(each); });
    if (waits || sources[property.first].batches != 0) return Note(property);
    for (const Property& follower : Followers(property)) MakeDue(follower);
    Tell("announced", property.first, property.second);
    const Registrations listeners = sources[property.first].listeners[property.second];
    for (const auto& each : listeners) each.run();
  }

  /// Calls the binds that the change of a scope concerns, and then those that waited.
  template <class Run>
  void InScope(int slot, Run change) {
    const ScopedValue wiring(place, Place::Wiring);
    calling = slot;
    change();
    Update();
    calling = -1;
    if (bind != nullptr) bind->waits = false;
    Update();
  }
  int Holder(int slot, int name) {
    for (const int source : scopes[slot]) {
      if (sources[source].name == name) return source;
    }
    return 0;
  }
  /// The scopes that the bind looks into, the nearest first.
  std::vector<int> Chain() {
    std::vector<int> chain;
    for (int slot = bind->slot; slot != -1; slot = isInner[slot] ? slot - 1 : -1) {
      chain.push_back(slot);
    }
    return chain;
  }
  /// Follows the nearest source of the bind's name.
  void Update() {
    if (bind == nullptr || bind->waits) return;
    int nearest = 0;
    for (const int slot : Chain()) nearest = nearest == 0 ? Holder(slot, bind->name) : nearest;
    if (std::exchange(bind->source, nearest) == nearest) return;
    Cancel(bind->token);
    bind->token = ++lastToken;
    const auto tell = [this, bound = bind] {
      if (bind == bound) Notify();
    };
    if (nearest != 0) sources[nearest].listeners[bind->property].push_back({bind->token, tell});
    Notify();
  }
  void Notify() {
    const auto bound = bind;
    for (const auto& each : Registrations(bound->subscribers)) {
      const auto isIt = [&](const auto& other) { return other.token == each.token; };
      if (std::ranges::any_of(bound->subscribers, isIt)) each.run();
    }
  }
  std::optional<int> BoundValue() {
    if (bind->source == 0) return {};
    return Value(bind->source, bind->property);
  }

  void End(const std::shared_ptr<Joined>& join) {
    if (join == nullptr) return;
    Cancel(join->token);
    join->bound = nullptr;
  }
  [[nodiscard]] bool IsJoined(const Joined& join) const {
    return bind != nullptr && join.bound == bind;
  }
  void Show(Joined& join) {
    if (join.step == Step::Setting) join.step = Step::Changed;
    if (join.step != Step::Changed && IsJoined(join)) ShowValue(join);
  }
  void ShowValue(Joined& join) {
    const ScopedValue telling(join.step, Step::Telling);
    join.shown = BoundValue();
    join.isEdited = false;
    if (join.shown) Happen("wrote", join.which, widgets[join.which] = *join.shown, Place::Anywhere);
  }
  Result Commit(Joined& join, int typed) {
    constexpr Result gone{false, PropertyError::NoSource};
    if (join.step != Step::None) return {};
    if (!IsJoined(join)) return gone;
    const ScopedValue committing(join.step, Step::Setting);
    if (join.shown) join.isEdited = true;
    const int source = bind->source;
    if (join.shown == typed && source != 0) return {};
    const Result result = source == 0 ? gone : Store({source, bind->property}, typed);
    const bool isChanged = std::exchange(join.step, Step::Committing) == Step::Changed;
    if (!IsJoined(join) || (!isChanged && result.second != PropertyError::None)) return result;
    if (BoundValue() != typed || !join.isEdited) {
      ShowValue(join);
    } else {
      join.shown = typed;
    }
    return result;
  }

  std::map<int, Source> sources;
  std::map<Property, int> due;  // and in which announcement
  std::map<Property, int> changes;
  std::map<int, int> batches;              // their sources
  std::map<int, std::vector<int>> scopes;  // their sources
  std::map<int, bool> isInner;             // scopes that the one before is a parent of
  std::shared_ptr<Bound> bind;
  std::map<int, int> watches;  // tokens
  std::map<int, int> ears;
  std::map<int, std::shared_ptr<Joined>> joins;
  std::map<int, int> widgets = {{0, 0}, {1, 0}};
  int calling = -1;  // the scope whose sources come or go
  int announcements = 0;
  int lastChange = 0;
  int lastSource = 0;
  int lastToken = 0;
};

}  // namespace DataBinding::Stress

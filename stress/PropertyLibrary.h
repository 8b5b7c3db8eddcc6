// SPDX-License-Identifier: Apache-2.0
/// The library's side of the scripts of properties and binds: it carries out each operation and
/// notes what happens.
#pragma once

#include <algorithm>
#include <memory>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/TwoWay.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyBatch.h"
#include "Properties.h"

namespace DataBinding::Stress {

class PropertyLibrary : public Player<PropertyLibrary> {
 public:
  static constexpr auto& points = propertyPoints;
  static auto Operations() { return PropertyOperations<PropertyLibrary>(); }

  void End() {
    for (int i = 0; i < batchCount; ++i) CloseBatch(i, 0, 0);
    for (int i = 0; i < scopeCount; ++i) EndScope(i, 0, 0);
    while (!sources.empty()) EndSource(0, 0, 0);
    EndBind(0, 0, 0);
  }
  void Make(int name, int slot, int followed) {
    if (sources.size() == mostSources) return;
    auto made = MakeDataSource<Source>(nullptr, *this, name, Choose(followed));
    auto* const scope = scopes[At(slot)].get();
    const bool isFree =
        scope != nullptr && scope->GetLocalDataSourceInstance(kindNames[name]) == nullptr;
    const ScopedValue wiring(place, Place::Wiring);
    Source* const source = made.release();
    if (isFree) GiveDataSource(*scope, DataSourcePtr<Source>(source));
  }
  void TakeSource(int chosen, int, int) {
    Source* const source = Choose(chosen);
    const ScopedValue wiring(place, Place::Wiring);
    for (auto& scope : scopes) {
      if (scope != nullptr) static_cast<void>(TakeDataSource(*scope, source).release());
    }
  }
  void EndSource(int chosen, int, int) {
    Source* const source = Choose(chosen);
    TakeSource(chosen, 0, 0);
    IDataSource::Destroy(source);
  }
  void OpenScope(int slot, int, int) {
    auto* const above = slot == 0 ? nullptr : scopes[At(slot - 1)].get();
    if (scopes[At(slot)] == nullptr) {
      scopes[At(slot)].reset(new DataSourceProvider(above, L"", nullptr));
    }
  }
  void EndScope(int slot, int, int) {
    const ScopedValue wiring(place, Place::Wiring);
    scopes[At(slot)].reset();
  }
  void Set(int chosen, int property, int value) {
    auto* const source = Choose(chosen);
    if (source != nullptr) Answer(SetProperty<int>(source, memberNames[property], value));
  }
  void OpenBatch(int slot, int chosen, int) {
    Source* const source = Choose(chosen);
    if (source == nullptr || batches[At(slot)] != nullptr) return;
    batches[At(slot)] = std::make_unique<PropertyBatch>(*source);
  }
  void CloseBatch(int slot, int, int) {
    const auto closed = std::exchange(batches[At(slot)], nullptr);
    if (closed != nullptr && slot == 0) closed->Commit();
  }
  void Watch(int which, int chosen, int property) {
    if (auto* source = Choose(chosen)) {
      watches[At(which)] = source->Register(Callback("called", which), memberNames[property]);
    }
  }
  void Bind(int slot, int name, int property) {
    bind.reset();
    bind = std::make_unique<Framework::DataBind<int>>(scopes[At(slot)].get(), kindNames[name],
                                                      memberNames[property]);
  }
  void EndBind(int, int, int) { bind.reset(); }
  void Hear(int which, int, int) {
    if (bind != nullptr) ears[At(which)] = bind->SubscribeToChanges(Callback("heard", which));
  }
  void Join(int which, int, int) {
    if (bind == nullptr) return;
    joins[At(which)] = std::make_unique<Joined>(TwoWay(
        *bind, [this, which] { return widgets[At(which)]; },
        [this, which](int value) {
          Happen("wrote", which, widgets[At(which)] = value, Place::Anywhere);
        }));
  }
  void Commit(int which, int typed, int) {
    widgets[At(which)] = typed;
    if (joins[At(which)] != nullptr) Answer(joins[At(which)]->Commit());
  }
  void EndJoin(int which, int, int) { joins[At(which)].reset(); }
  void Observe() {
    for (const auto& [id, source] : sources) {
      Tell("values", *source->a * 10 + *source->b, *source->c * 1000 + *source->d);
      for (const auto* name : memberNames) {
        Tell("listeners", id, static_cast<int>(source->GetNumRegistered(name)));
      }
    }
    if (bind != nullptr) Tell("bound", bind->HasValue() ? 1 : 0, bind->Get().value.value_or(-1));
    for (const int value : widgets) Tell("widget", value);
  }

 private:
  using Joined = TwoWayJoin;
  class Source final : public NamedDataSource {
   public:
    Source(PropertyLibrary& owner, int kind, const Source* other)
        : NamedDataSource(kindNames[kind]),
          world(owner),
          b(this, L"B", 0,
            {.changed = [&owner, kind](
                            int,
                            int now) { owner.Happen("changed", kind, now, Place::Anywhere); }}),
          d(
              this, L"D",
              [this, followed = other == nullptr ? 0 : other->id] {
                return *c + world.Followed(followed);
              },
              c, other == nullptr ? b : other->b, other == nullptr ? c : other->d) {
      world.sources[id] = this;
    }
    ~Source() override {
      world.sources.erase(id);
      world.Tell("ended", id);
    }
    void UpdateListeners(const VtrString& names) override {
      const auto isIt = [&](const wchar_t* name) { return names == name; };
      const auto* const found = std::ranges::find_if(memberNames, isIt);
      world.Tell("announced", id, static_cast<int>(found - memberNames));
      NamedDataSource::UpdateListeners(names);
    }
    using NamedDataSource::GetNumRegistered;

   private:
    PropertyLibrary& world;

   public:
    int id = ++world.lastSource;
    Property<int> a{this, L"A", 0, {.validate = [](int n) { return n == refused ? L"no" : L""; }}};
    Property<int> b;
    ComputedProperty<int> c{this, L"C", [this] { return *a + *b; }, a, b, a};
    ComputedProperty<int> d;
  };

  [[nodiscard]] Source* Choose(int chosen) const {
    if (sources.empty()) return nullptr;
    return std::next(sources.begin(), chosen % static_cast<int>(sources.size()))->second;
  }
  [[nodiscard]] int Followed(int id) const {
    const auto found = sources.find(id);
    return found == sources.end() ? 0 : *found->second->b + *found->second->d;
  }
  void Answer(const SetResult& result) {
    Tell("set", result.changed ? 1 : 0, static_cast<int>(result.error));
  }

  std::map<int, Source*> sources;
  std::array<DataSourceProviderPtr, scopeCount> scopes;
  std::array<std::unique_ptr<PropertyBatch>, batchCount> batches;
  std::unique_ptr<Framework::DataBind<int>> bind;
  std::array<Subscription, monitorCount> watches;
  std::array<Subscription, earCount> ears;
  std::array<int, joinCount> widgets{};
  std::array<std::unique_ptr<Joined>, joinCount> joins;
  int lastSource = 0;
};

}  // namespace DataBinding::Stress

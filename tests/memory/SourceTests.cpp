// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <optional>

#include "../support/Scopes.h"
#include "Attempts.h"
#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/Diagnose.h"
#include "DataBinding/framework/TwoWay.h"
#include "DataBinding/property/DataSourceConstructor.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/property/PropertyBatch.h"

namespace DataBinding::Testing {
namespace {

class Gauge : public NamedDataSource {
 public:
  Gauge() : NamedDataSource(L"Gauge") {}
  Property<int> level{this, L"Level", 1};
  ReadOnlyProperty<int> limit{this, L"Limit", 9};
  ComputedProperty<bool> isHigh{this, L"IsHigh", [this] { return *level > 5; }, level, limit};
};

class View final : public DataListener {
 public:
  explicit View(std::string& log) {
    AddDataListener(L"Gauge", L"Level", [&log] { log += 'v'; });
    AddDataListener(L"Other", L"Level", [&log] { log += 'o'; });
  }

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}
};

/// The scopes of a scene: the outer one has a gauge.
struct World : Scopes {
  using Bind = Framework::DataBind<int>;

  World() {
    parent->AddDataSource(gauge);
    log.reserve(50);
  }
  void TestBody() override {}
  /// The first two are of one sampling hash.
  static VtrString Name(std::size_t i) {
    if (i > 4) return VtrString().Format(L"%u", i);
    return i == 3 ? L"PropertyOne" : L"P_o_e_t_O_e";
  }
  auto Mark(char mark) {
    return [this, mark] { log += mark; };
  }
  std::string Marks() { return std::exchange(log, {}); }
  /// What a change of the level marks.
  std::string Changed(int level) {
    log.clear();
    gauge->level.Set(level);
    return Marks();
  }
  /// Once more where only the listener lacked memory; nobody listens to a source that is not there.
  void AddToChild(IDataSource* source) {
    child->RemoveDataSource(source);
    try {
      child->AddDataSource(source);
    } catch (const std::bad_alloc&) {
      const auto* there = child->GetLocalDataSourceInstance(source->GetDataSourceName());
      EXPECT_TRUE(there != nullptr || !source->AreListenersAvailable(L"Level"));
      throw;
    }
  }
  void Open(std::unique_ptr<Bind>& bind, char mark) {
    auto opened = std::make_unique<Bind>(child.get(), L"Gauge", L"Level");
    watch = opened->SubscribeToChanges(Mark(mark));
    bind = std::move(opened);
  }

  Gauge* gauge = MakeDataSource<Gauge>(parent.get()).release();
  Subscription watch;
};

TEST(FailingAllocations, InAnAnnouncementLoseNoListener) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    std::vector<Subscription> listeners(20);
    attempt([&] { listeners[0] = w.gauge->Register(w.Mark('a'), L"Level"); });
    attempt([&] { listeners[1] = w.gauge->Register(w.Mark('b'), L"Level"); });
    attempt([&] { listeners[2] = w.gauge->Register(w.Mark('c'), L"IsHigh"); });
    for (std::size_t i = 3; i < 20; ++i) {
      attempt([&] { listeners[i] = w.gauge->Register(w.Mark('x'), World::Name(i)); });
    }
    attempt([&] { w.gauge->level.Set(7); });
    EXPECT_EQ(w.Marks(), "abc");
    attempt([&] { w.gauge->UpdateListeners(L"IsHigh, Level"); });
    EXPECT_EQ(w.Marks(), "cab");
    attempt([&] { w.gauge->UpdateListeners(L"*, -Level"); });
    EXPECT_EQ(w.Marks(), "c");
    attempt([&] { EXPECT_EQ(w.gauge->GetRegisteredProperties().size(), 19u); });
    attempt([&] { EXPECT_EQ(GetProperty<int>(w.gauge, L"Level").value, 7); });
    attempt(
        [&] { EXPECT_EQ(SetProperty(w.gauge, L"Level", 7.5).error, PropertyError::WrongType); });
    attempt([&] {
      const PropertyBatch batch(*w.gauge);
      w.gauge->level.Set(3);
    });
    EXPECT_EQ(w.Marks(), "abc");
  });
}

TEST(FailingAllocations, InScopesLeaveEachSourceWhereItBelongs) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    ProviderPtr scope;
    DataSourcePtr<IDataSource> made;
    std::optional<DataSourceConstructor<Gauge>> constructor;
    attempt([&] { scope = MakeProvider(w.child.get(), L"D, E"); });
    attempt([&] { w.registrar.AttachProvider(scope.get()); });
    attempt([&] { constructor.emplace(L"Gauge", L"D, E"); });
    attempt([&] { EXPECT_EQ(w.child->GetDataSource(L"Gauge"), w.gauge); });
    attempt([&] { EXPECT_NE(scope->GetDataSource(L"Gauge"), w.gauge); });
    attempt([&] { EXPECT_EQ(Joined(scope->GetRegisteredDataSources()), "Gauge"); });
    attempt([&] { scope->SetCustomData(Guid(), &w); });
    attempt([&] { Emplace<NamedDataSource>(*scope, L"Other"); });
    attempt([&] { made = TakeDataSource(*scope, scope->GetLocalDataSourceInstance(L"Other")); });
    EXPECT_EQ(scope->GetDataSource(L"Other"), nullptr);
    attempt([&] { constructor.reset(); });
    EXPECT_EQ(w.registrar.FindConstructor(L"Gauge"), nullptr);
    attempt([&] { w.registrar.Shutdown(), w.registrar.Initialize(); });
    attempt([&] { scope.reset(); });
    attempt([&] { MakeProvider(w.child.get()); });
    w.child->VisitChildren([](auto& /*left*/) { ADD_FAILURE(); });
  });
}

TEST(FailingAllocations, InARegistrationOfferTheConstructorOnceInEachCategory) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    LoggedConstructor doc(w.log, "doc", L"Doc", L"A,B");
    attempt([&] { w.registrar.RegisterDataSource(&doc); });
    w.log.clear();
    w.registrar.AttachProvider(w.parent.get());
    EXPECT_EQ(w.Marks(), "doc:attached doc:attached ");
    attempt([&] { w.registrar.UnregisterDataSource(&doc); });
    w.registrar.AttachProvider(w.parent.get());
    EXPECT_EQ(w.Marks().find("attached"), std::string::npos);
  });
}

TEST(FailingAllocations, InListenersConnectEachOnce) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    std::optional<View> view;
    std::optional<View> lost;
    auto other = MakeDataSource<NamedDataSource>(w.child.get(), L"Other");
    attempt([&] { view.emplace(w.log); });
    attempt([&] { view->SetDataSourceProvider(w.child.get()); });
    attempt([&] { lost.emplace(w.log).SetDataSourceProvider(w.child.get()); });
    EXPECT_EQ(w.Changed(2), "vv");
    attempt([&] { lost.reset(); });
    EXPECT_EQ(w.Changed(3), "v");
    attempt([&] { w.AddToChild(other.get()); });
    other->UpdateListeners(L"Level");
    EXPECT_EQ(w.Marks(), "o");
    attempt([&] { w.child->RemoveDataSource(other.get()); });
    attempt([&] { EXPECT_EQ(Diagnose(*w.parent).size(), 2u); });
    attempt([&] { w.child.reset(); });
    EXPECT_EQ(w.Changed(4), "v");
    attempt([&] { view.reset(); });
    EXPECT_EQ(w.Changed(5), "");
  });
}

TEST(ScopeMemory, KeepsNothingOfWhatHasGone) {
  std::string log;
  const ProviderPtr scope = MakeProvider();
  const auto source = MakeDataSource<NamedDataSource>(nullptr, L"Other");
  std::optional<View> strays[3];
  std::int64_t held[3];

  auto* next = held;
  for (auto& stray : strays) {
    stray.emplace(log).SetDataSourceProvider(scope.get());
    stray->SetDataSourceProvider(nullptr);  // stays registered
    stray.reset();
    scope->AddDataSource(source.get());
    scope->RemoveDataSource(source.get());
    *next++ = LiveAllocations();
  }

  EXPECT_EQ(held[1], held[2]);
}

TEST(FailingAllocations, InBindsLetThemFollowTheirProperty) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    std::unique_ptr<World::Bind> bind;
    std::unique_ptr<World::Bind> copy;
    VtrString text;
    std::optional<TwoWayJoin> join;
    attempt([&] { w.Open(bind, 'b'); });
    attempt([&] { bind->Connect(w.child.get()); });
    EXPECT_EQ(w.Changed(2), "b");
    attempt([&] { copy = std::make_unique<World::Bind>(*bind); });
    attempt([&] {
      join.emplace(TwoWay(
          *copy, [&] { return text; }, [&](const VtrString& shown) { text = shown; },
          TextConverter<int>()));
    });
    EXPECT_EQ(w.Changed(3), "b");
    EXPECT_EQ(text, L"3");
    text = L"12";
    attempt([&] { return join->Commit().IsAccepted(); });
    EXPECT_EQ(*w.gauge->level, 12);
    attempt([&] { w.parent->DeleteLocalDataSourceInstance(L"Gauge"); });
    EXPECT_FALSE(bind->HasValue());
    attempt([&] { EXPECT_FALSE(bind->Get().text.IsEmpty()); });
    attempt([&] { bind.reset(); });
  });
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/DataBind.h"

#include <algorithm>
#include <array>
#include <vector>

#include "DataBinding/framework/Diagnose.h"
#include "DataBinding/framework/EventBind.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using State = Framework::BindStatus::State;
using Framework::DataBind;

class DataBinds : public BindTest {};

TEST_F(DataBinds, TellOnceThatTheirScopeIsTakenFromThem) {
  AddGauge(child);
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto watch = Watch(bind);
  for (int i = 0; i < 2; ++i) bind.Connect(nullptr);
  EXPECT_EQ(Notes(), "-");
}

TEST_F(DataBinds, FallBackToASourceThatIsJustBeingAdded) {
  std::array<std::optional<LoggedListener>, 2> droppers;
  DataBind<int> bind;
  droppers[0].emplace(log);
  bind = DataBind<int>(child.get(), L"Gauge", L"Level");
  droppers[1].emplace(log);
  for (auto& dropper : droppers) {
    parent->AddDataListener(&*dropper, {L"Gauge"}, true);
    dropper->hook = [this](const std::string& /*note*/) {
      child->DeleteLocalDataSourceInstance(L"Gauge");
    };
  }
  AddGauge(child, 1);
  AddGauge(parent, 2);

  EXPECT_EQ(*bind.Get(), 2);
}

TEST_F(DataBinds, FollowTheSourceThatTheirScopeFindsByTheName) {
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto watch = Watch(bind);
  AddGauge(child, 1);

  auto* second = AddGauge(child, 2);
  second->Level.Set(3);

  EXPECT_EQ(Notes(), "1");

  child->RemoveDataSource(second);  // which takes the name off the first one
  AddGauge(child, 4);
  EXPECT_EQ(Notes(), "4");

  IDataSource::Destroy(second);
}

TEST_F(DataBinds, BeginWithTheNearestScopeOfTheContextsCategory) {
  const auto inner = MakeProvider(child.get(), L"Row,C");
  AddGauge(inner, 1);
  AddGauge(child, 2);
  AddGauge(parent, 3);
  const auto shown = [&](const wchar_t* context) {
    return DataBind<int>(inner.get(), context, L"Gauge", L"Level").Get().value.value_or(0);
  };

  EXPECT_EQ(shown(L""), 1);
  EXPECT_EQ(shown(Framework::nullDataMarker), 1);
  EXPECT_EQ(shown(L"C"), 1);
  EXPECT_EQ(shown(L"B"), 3);
  EXPECT_EQ(shown(L"b"), 0);
  EXPECT_EQ(shown(L"A,B"), 0);
}

TEST_F(DataBinds, LoseWhatIsBehindAScopeThatShutsDown) {
  const auto inner = MakeProvider(child.get(), L"Row");
  AddGauge(parent, 3);
  DataBind<int> byContext(inner.get(), L"A", L"Gauge", L"Level");
  DataBind<int> byName(inner.get(), L"Gauge", L"Level");
  const auto watches = std::array{Watch(byContext), Watch(byName)};

  child.reset();

  EXPECT_EQ(Notes(), "- -");
  EXPECT_EQ(byContext.Status().state, State::NoContext);
  EXPECT_EQ(byName.Status().state, State::NoSource);

  inner->Shutdown();
  EXPECT_EQ(byName.Status().state, State::NoProvider);

  AddGauge(inner);
  EXPECT_FALSE(byName.HasValue());
}

TEST_F(DataBinds, ThrowingSubscriberKeepsNobodyFromHearing) {
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto thrower = bind.SubscribeToChanges([] { throw std::runtime_error("refused"); });
  const auto watch = Watch(bind);

  EXPECT_THROW(AddGauge(child), std::runtime_error);

  static_cast<Gauge*>(child->GetDataSource(L"Gauge"))->Level.Set(2);
  EXPECT_EQ(Notes(), "1 2");
}

TEST_F(DataBinds, CopiesConnectByThemselvesWithoutTheSubscribers) {
  auto* gauge = AddGauge(child);
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  DataBind<int> copy(bind);
  const auto watches = std::array{Watch(bind), Watch(copy)};

  gauge->Level.Set(2);

  EXPECT_EQ(Notes(), "2 2");

  AddGauge(child, 7, L"Other");
  AddGauge(parent, 8, L"Other");
  copy = DataBind<int>(child.get(), L"A", L"Other", L"Level");
  EXPECT_EQ(copy.GetTrackingName(), L"A::Other::Level");

  gauge->Level.Set(3);
  const auto& same = copy;
  copy = same;
  EXPECT_EQ(Notes(), "8 3");
}

TEST_F(DataBinds, MadeByASubscriberWaitUntilTheSourceIsFiledOrGone) {
  DataBind<int> first(child.get(), L"Gauge", L"Level");
  std::optional<DataBind<int>> made, moved;
  std::array<Subscription, 2> watches;
  std::optional<Framework::EventBind> event;
  const auto make = first.SubscribeToChanges([&] {
    DataBind<int> ended(child.get(), L"Gauge", L"Level");
    made.emplace(ended);
    moved.emplace(parent.get(), L"Gauge", L"Level");
    watches = {Watch(*made), Watch(*moved)};
    log += std::to_string(static_cast<int>(made->Status().state)) + " ";
    *moved = ended;
    event.emplace(L"", L"", L"Remove").Connect(child.get());
  });
  AddGauge(parent, 1);

  EXPECT_EQ(Notes(), "5 1 1");

  made.reset(), moved.reset();
  AddGauge(child, 2);
  EXPECT_EQ(Notes(), "5 - 2 2");

  made.reset(), moved.reset();
  child->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(Notes(), "5 - 1 1");
  EXPECT_EQ(Diagnose(*child).size(), 4U);
}

TEST_F(DataBinds, WaitAlsoWhereAScopeEndsOrAListenerThrows) {
  const auto inner = MakeProvider(child.get());
  std::optional<DataBind<int>> made;
  DataBind<int> first(inner.get(), L"Gauge", L"Level");
  const auto make = first.SubscribeToChanges([&] {
    made.emplace(inner.get(), L"Gauge", L"Level");
    throw 1;
  });

  EXPECT_THROW(AddGauge(parent, 1), int);
  EXPECT_EQ(*made->Get(), 1);
  EXPECT_THROW(child->Shutdown(), int);
  EXPECT_FALSE(made->HasValue()) << "the parent is no outer scope any more";
  EXPECT_THROW(AddGauge(inner, 3), int);
  EXPECT_EQ(*made->Get(), 3);
}

TEST_F(DataBinds, SubscriberOfALossIsNotToldOfAShadow) {
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  DataBind<int> other(bind);
  Add(parent, L"Gauge");  // without the property
  const DataSourcePtr<Gauge> gauge(AddGauge(child));
  const auto ask = [&] { log += std::to_string(static_cast<int>(bind.Status().state)); };
  const std::array asking{bind.SubscribeToChanges(ask), other.SubscribeToChanges(ask)};

  child->RemoveDataSource(gauge.get());
  EXPECT_EQ(log.find('8'), std::string::npos) << log;
}

/// Lies in a place of its own, so that its scope cannot end it, but others can.
class Lodger final : public Gauge {
  void Destroy() override {}
};

TEST_F(DataBinds, SubscribersMayAskWhileASourceEndsBehindItsScopesBack) {
  std::optional<Lodger> lodger(std::in_place);
  child->AddDataSource(&*lodger);
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  DataBind<int> other(bind);
  std::vector<VtrString> told;
  const auto ask = [&] { told.insert(told.end(), {bind.Get().text, other.Status().text}); };
  const std::array asking{bind.SubscribeToChanges(ask), other.SubscribeToChanges(ask)};
  lodger.reset();
  const VtrString missing = L"There is no data source \"Gauge\" to have a property \"Level\".";

  EXPECT_EQ(told, std::vector(4, missing));

  lodger.emplace();  // where the scope goes on to see one, until it lets it go
  child->DeleteLocalDataSourceInstance(L"Gauge");
}

TEST_F(DataBinds, FindAPropertyThatIsThereOnlySometimes) {
  auto* drawer = AddDrawer(child);
  DataBind<int> bind(child.get(), L"Drawer", L"Level");
  const auto watch = Watch(bind);

  for (const int level : {1, 2}) {
    drawer->Level.emplace(drawer, PropertyName(L"Level"), level);
    EXPECT_EQ(*bind.Get(), level);
    drawer->Level->Set(level + 5);
    drawer->Level.reset();
    EXPECT_EQ(bind.Get().text, bind.Status().text);
    EXPECT_EQ(bind.Status().state, State::NoProperty);
  }

  EXPECT_EQ(Notes(), "6 7");
}

}  // namespace
}  // namespace DataBinding::Testing

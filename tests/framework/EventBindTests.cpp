// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/EventBind.h"

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "DataBinding/appevents/EventHold.h"
#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/Diagnose.h"
#include "Gauge.h"

namespace DataBinding {

/// What the scopes of these tests stand in.
class IDataContext {};

namespace Testing {
namespace {

using State = Framework::BindStatus::State;
using Framework::DataBind;
using Framework::EventBind;
using Framework::IEventBind;

class Selection : public NamedDataSource {
 public:
  Selection() : NamedDataSource(L"Selection") {}
  Property<IDataContext*> Current{this, L"Current"};
};

class EventBindTest : public testing::Test {
 protected:
  ~EventBindTest() override { IDataSourceProvider::Destroy(scope); }

  IDataContext ofScope;
  IDataContext selected;
  IDataSourceProvider* scope = new DataSourceProvider(nullptr, L"Page", &ofScope);
};

TEST_F(EventBindTest, StandsInTheContextOfItsOwnBindAloneOnceItHasOne) {
  auto* selection = MakeDataSource<Selection>(scope).release();
  EventBind remove(L"", L"", L"Remove");
  remove.Connect(scope);
  std::string heard;

  remove.SetDataContextBind(
      std::make_unique<DataBind<IDataContext*>>(scope, L"Selection", L"Current"),
      [&](IEventBind* bind, auto* /*context*/) {
        heard += bind->DataContext() == &selected ? "s" : bind->CanRaise() ? "0" : "-";
      });

  EXPECT_EQ(remove.Status().text,
            L"There is no data source \"Selection\" to have a property \"Current\".");

  scope->AddDataSource(selection);
  selection->Current.Set(&selected);
  scope->DeleteLocalDataSourceInstance(L"Selection");
  EXPECT_EQ(heard, "0s-");

  remove.SetDataContextBind(nullptr, nullptr);
  EXPECT_EQ(remove.DataContext(), &ofScope);
}

TEST_F(EventBindTest, RaisesNothingWithoutAScope) {
  EventBind remove(L"", L"", L"Remove");
  const std::array<std::function<void()>, 3> ends{[] {}, [&] { remove.Connect(nullptr); },
                                                  [&] { scope->Shutdown(); }};

  for (const auto& end : ends) {
    end();
    EXPECT_FALSE(remove.CanRaise());
    EXPECT_EQ(remove.Status().state, State::NoProvider);
    EXPECT_EQ(remove.Status().text,
              L"There is no scope whose data context event \"Remove\" is raised for.");
    remove.Connect(scope);
    EXPECT_TRUE(remove.CanRaise());
  }
}

TEST_F(EventBindTest, TellsWhenItsScopesOrItsNameChange) {
  DataSourceProviderPtr row(scope->CreateDataSourceProvider(L"Row", &selected));
  EventBind remove(L"Page", L"", L"EventBindTest.Told");
  std::string heard;
  const auto told = remove.SubscribeToChanges([&] { heard += remove.CanRaise() ? "1" : "0"; });

  remove.Connect(row.get());
  {
    const EventHold busy(L"EventBindTest.Told");
    const EventHold again(L"EventBindTest.Told");
    const EventHold other(L"EventBindTest.Other");
    EXPECT_FALSE(remove.Raise());
  }
  EXPECT_TRUE(remove.Raise());
  EXPECT_EQ(heard, "101");
  scope->Shutdown();
  EXPECT_EQ(heard, "1010");
  remove.Connect(scope);
  row.reset();

  EXPECT_EQ(heard, "10101");
}

TEST_F(EventBindTest, MayEndWhenItTells) {
  for (const bool isByTheName : {true, false}) {
    auto remove = std::make_unique<EventBind>(L"", L"", L"EventBindTest.Ended");
    remove->Connect(scope);
    int calls = 0;
    const auto ending = remove->SubscribeToChanges([&] { ++calls, remove.reset(); });
    const auto after = remove->SubscribeToChanges([&] { ++calls; });

    if (isByTheName) IAppEventBroadcaster::GetInstance().DisableEvent(L"EventBindTest.Ended");
    if (!isByTheName) remove->SetDataContextBind(nullptr, nullptr);

    EXPECT_EQ(calls, 1);
  }
  IAppEventBroadcaster::GetInstance().EnableEvent(L"EventBindTest.Ended", false);
}

TEST_F(EventBindTest, StandsInTheNearestScopeOfItsContextsCategory) {
  const DataSourceProviderPtr row(scope->CreateDataSourceProvider(L"Row", &selected));
  using Case = std::pair<const wchar_t*, IDataContext*>;

  for (const auto& [name, context] : {Case{L"", &selected}, Case{L"Row", &selected},
                                      Case{L"Page", &ofScope}, Case{L"Book", nullptr}}) {
    EventBind bind(name, L"", L"Remove");
    bind.Connect(row.get());
    EXPECT_EQ(bind.DataContext(), context);
    EXPECT_EQ(bind.Status().state, context ? State::Connected : State::NoContext);
    EXPECT_EQ(bind.Status().text,
              context ? L""
                      : L"No scope here or further out has the category \"Book\", whose data "
                        L"context event \"Remove\" is raised for.");
  }
}

TEST_F(EventBindTest, NamesNoEventWhereItsPathIsEmptyOrTheMarker) {
  for (const auto* path : {L"", Framework::nullPathMarker}) {
    EventBind bind(L"", L"", path);
    bind.Connect(scope);
    bind.Raise();
    EXPECT_EQ(bind.Status().state, State::Unbound);
    EXPECT_EQ(bind.Status().text, L"The bind names no event.");
  }
}

TEST_F(EventBindTest, RaisesTheEventOfItsPathOnBehalfOfItsModule) {
  std::vector<IDataContext*> heard;
  const AppEvent<IDataContext*> event(VtrString(L"EventBindTest.Chosen"));
  const auto subscription =
      event.Subscribe([&](IDataContext* context) { heard.push_back(context); });
  IdlePass idle([] {});
  EventBind bind(L"", L"", L"EventBindTest.Chosen");

  bind.Raise();
  bind.Connect(scope);
  bind.Raise();
  idle.Run();
  bind.Raise();
  IAppEventBroadcaster::GetInstance().DropEventsFrom(ThisModule());
  idle.Run();

  EXPECT_EQ(heard, (decltype(heard){&ofScope}));
}

TEST_F(EventBindTest, RaisesNoEventOfAnotherSignature) {
  EventBind bind(L"", L"", L"EventBindTest.Counted");

  bind.Connect(scope);

  EXPECT_TRUE(bind.CanRaise());
  EXPECT_EQ(Diagnose(*scope).at(0).status.state, State::Connected);

  const AppEvent<int> other(L"EventBindTest.Counted");
  const auto subscription = other.Subscribe([](int) {});  // asking has fixed nothing
  bind.Raise();
  EXPECT_FALSE(bind.CanRaise());
  EXPECT_EQ(bind.Status().state, State::WrongType);
  EXPECT_NE(std::wstring_view(bind.Status().text).find(L"(int)"), std::wstring_view::npos);
}

}  // namespace
}  // namespace Testing
}  // namespace DataBinding

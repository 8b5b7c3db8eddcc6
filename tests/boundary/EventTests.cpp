// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "LoadedPlugin.h"

namespace Boundary {
namespace {

using namespace DataBinding;

class EventBoundary : public testing::Test {
 protected:
  ~EventBoundary() override {
    IAppEventBroadcaster::ReleaseInstance(false);
    WAppEventRegistrar::ReleaseInstance(false);
  }
  static IAppEventBroadcaster& events() { return IAppEventBroadcaster::GetInstance(); }
  std::string Dispatched() {
    events().DispatchPendingEvents();
    return std::exchange(heard, {});
  }

  std::string heard;
};

TEST_F(EventBoundary, SingletonsOfTheLibraryOutliveThePluginThatAskedFirst) {
  const IAppEventBroadcaster* made = nullptr;

  {
    const Plugin plugin;
    made = &plugin->events.broadcaster();
    EXPECT_EQ(&plugin->events.registrar(), &RegistrarOfView());
  }

  EXPECT_FALSE(Plugin::IsLoaded());
  ASSERT_TRUE(IAppEventBroadcaster::HasInstance() && WAppEventRegistrar::HasInstance());
  EXPECT_EQ(&events(), made);
  EXPECT_EQ(&BroadcasterOfView(), made);
  EXPECT_EQ(&RegistrarOfView(), &WAppEventRegistrar::GetInstance());
}

TEST_F(EventBoundary, SecondSignatureOfANameIsRefusedWhicheverModuleComesSecond) {
  AppEvent<int>(L"FirstInHost").Raise(1);

  {
    const Plugin plugin;
    const std::string text = plugin->events.use(L"FirstInHost");
    EXPECT_NE(text.find("(Boundary::Reading), but was first used with void (int)"), text.npos);
    EXPECT_EQ(plugin->events.use(L"FirstInPlugin"), "");
  }

  EXPECT_FALSE(Plugin::IsLoaded());
  EXPECT_THROW(AppEvent<int>(L"FirstInPlugin").Raise(1), std::logic_error);

  AppEvent<Reading>(L"FirstInPlugin").Raise({});
}

struct Unnamed {};

TEST_F(EventBoundary, TypesOfOneNameInTwoUnnamedNamespacesAreTwoSignatures) {
  AppEvent<Unnamed>(L"OfUnnamedInHost").Raise({});
  const Plugin plugin;
  EXPECT_NE(plugin->events.useUnnamed(L"OfUnnamedInHost"), "");
  EXPECT_EQ(plugin->events.useUnnamed(L"OfUnnamedInPlugin"), "");
  EXPECT_THROW(AppEvent<Unnamed>(L"OfUnnamedInPlugin").Raise({}), std::logic_error);
}

TEST_F(EventBoundary, EventsPassBetweenModulesUntilAPluginTakesItsOwnAlong) {
  const auto local =
      read.Subscribe([this](const Reading& reading) { heard += reading.unit.ToUtf8(); });

  {
    const Plugin plugin;
    auto remote = plugin->events.listen(heard);
    read.Raise({2, L"host"});
    EXPECT_EQ(Dispatched(), "host2host");
    plugin->events.enter(heard);
    plugin->events.raise(1);
    EXPECT_EQ(Dispatched(), "ownhook0plug1plugguest1hook1");
    events().DisableEvent(read.Name());
    plugin->events.raise(2);
    EXPECT_EQ(Dispatched(), "");
    EXPECT_TRUE(events().AnyPendingDisableEvents(read.Name()));
    plugin->events.raise(3);
    plugin->events.leave();
    remote.Cancel();
  }
  EXPECT_FALSE(Plugin::IsLoaded());
  EXPECT_FALSE(events().HasPendingEvents() || events().AnyPendingDisableEvents(read.Name()));

  read.Raise({4, L"host"});
  events().EnableEvent(read.Name(), true);
  EXPECT_EQ(Dispatched(), "host");
}

}  // namespace
}  // namespace Boundary

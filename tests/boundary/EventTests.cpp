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

TEST_F(EventBoundary, SingletonsOfTheLibraryAreOneForAllAndDoNotGoWithThePluginThatAskedFirst) {
  const IAppEventBroadcaster* made = nullptr;
  {
    const Plugin plugin;
    made = &plugin->events.broadcaster();
    plugin->events.broadcaster().DisableEvent(L"A");
    EXPECT_EQ(&plugin->events.registrar(), &WAppEventRegistrar::GetInstance());
  }
  EXPECT_FALSE(Plugin::IsLoaded());
  ASSERT_TRUE(IAppEventBroadcaster::HasInstance() && WAppEventRegistrar::HasInstance());
  EXPECT_EQ(&events(), made);
  EXPECT_TRUE(events().IsDisable(L"A"));
  EXPECT_EQ(&BroadcasterOfView(), &events());
  EXPECT_EQ(&RegistrarOfView(), &WAppEventRegistrar::GetInstance());
}

TEST_F(EventBoundary, EventsPassBetweenModulesAndOutliveAPluginThatListened) {
  const auto local =
      read.Subscribe([this](const Reading& reading) { heard += reading.unit.ToUtf8(); });
  {
    const Plugin plugin;
    auto remote = plugin->events.listen(heard);
    plugin->events.raise(1);
    EXPECT_EQ(Dispatched(), "plug1plug");
    read.Raise({2, L"host"});
    EXPECT_EQ(Dispatched(), "host2host");
    remote.Cancel();
  }
  EXPECT_FALSE(Plugin::IsLoaded());
  read.Raise({3, L"still"});
  EXPECT_EQ(Dispatched(), "still");
}

TEST_F(EventBoundary, SecondSignatureOfANameIsRefusedWhicheverModuleComesSecond) {
  AppEvent<int>(L"FirstInHost").Raise(1);
  {
    const Plugin plugin;
    const std::string text = plugin->events.use(L"FirstInHost");
    EXPECT_NE(text.find("void (Boundary::Reading), but was first used with void (int)"),
              std::string::npos)
        << text;
    EXPECT_EQ(plugin->events.use(L"FirstInPlugin"), "");
    AppEvent<Reading>(L"FirstInPlugin").Raise({});
    events().DropOwner(ThisModule());
  }
  EXPECT_FALSE(Plugin::IsLoaded());
  try {
    AppEvent<int>(L"FirstInPlugin").Raise(1);
    ADD_FAILURE() << "not refused";
  } catch (const std::logic_error& error) {
    EXPECT_TRUE(std::string(error.what()).ends_with("first used with void (Boundary::Reading)"));
  }
  AppEvent<Reading>(L"FirstInPlugin").Raise({});
}

TEST_F(EventBoundary, PluginThatTakesItsEventsHooksAndListenersAlongLeavesNothingToStumbleOn) {
  const auto local =
      read.Subscribe([this](const Reading& reading) { heard += reading.unit.ToUtf8(); });
  {
    const Plugin plugin;
    plugin->events.enter(heard);
    plugin->events.raise(1);
    EXPECT_EQ(Dispatched(), "ownhook0plugguest1hook1");
    events().DisableEvent(read.Name());
    plugin->events.raise(2);
    EXPECT_EQ(Dispatched(), "");
    EXPECT_TRUE(events().AnyPendingDisableEvents(read.Name()));
    plugin->events.raise(3);
    plugin->events.leave();
    plugin->events.enter(heard);
    plugin->events.leave();
  }
  EXPECT_FALSE(Plugin::IsLoaded());
  EXPECT_FALSE(events().HasPendingEvents() || events().AnyPendingDisableEvents(read.Name()));
  read.Raise({4, L"host"});
  events().EnableEvent(read.Name(), true);
  EXPECT_EQ(Dispatched(), "host");
}

}  // namespace
}  // namespace Boundary

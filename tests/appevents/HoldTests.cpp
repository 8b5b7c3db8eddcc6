#include <optional>
#include <stdexcept>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

class Holds : public Events {
 protected:
  Holds() { Listen('a'); }

  const VtrString name = moved.Name();
};

TEST_F(Holds, NestedDisablingKeepsTheNewestEventAndTheLastEnablingDeliversIt) {
  moved.Raise(1);  // queued before the name is disabled
  events().DisableEvent(name);
  events().DisableEvent(name);
  EXPECT_FALSE(events().AnyPendingDisableEvents(name));
  EXPECT_EQ(Dispatched(), "");
  moved.Raise(2);
  moved.Raise(3);
  EXPECT_EQ(Dispatched(), "");
  EXPECT_TRUE(events().AnyPendingDisableEvents(name));
  events().EnableEvent(name, true);
  EXPECT_TRUE(events().IsDisable(name));
  EXPECT_EQ(Notes(), "");
  events().EnableEvent(name, true);
  EXPECT_EQ(Notes(), "a3") << "at once";
  EXPECT_FALSE(events().IsDisable(name) || events().AnyPendingDisableEvents(name));
  EXPECT_EQ(Dispatched(), "");
}

TEST_F(Holds, EnablingWithoutFiringDropsAndEnablingTooOftenIsNotMadeUpFor) {
  events().DisableEvent(name);
  moved.Send(1);
  events().DropEvents(name);
  EXPECT_FALSE(events().AnyPendingDisableEvents(name));
  moved.Send(2);
  events().EnableEvent(name, false);
  events().EnableEvent(name, true);
  events().EnableEvent(L"never disabled", true);
  events().DisableEvent(name);
  EXPECT_TRUE(events().IsDisable(name));
  EXPECT_FALSE(events().IsDisable(L"moved"));
  EXPECT_EQ(log, "");
}

TEST_F(Holds, ServeEventsOfTheApplicationsOwnKind) {
  PolicyEventBroadcaster::EventPtr own;
  own = std::make_shared<NotedEvent>(log, "", [&](auto& broadcaster) {
    if (!NotedEvent::HoldIfDisabled(broadcaster, L"Own", own)) log += "own";
  });
  events().QueueEvent(L"Own", own);
  EXPECT_EQ(Dispatched(), "own");
  events().DisableAllEvents();
  EXPECT_TRUE(events().IsDisable(L"Own")) << "known by its dispatch";
  events().QueueEvent(L"Own", own);
  EXPECT_EQ(Dispatched(), "");
  EXPECT_TRUE(events().AnyPendingDisableEvents(L"Own"));
  events().EnableAllEvents(true);
  EXPECT_EQ(Notes(), "own");
  own.reset();
}

TEST_F(Holds, AllCoverKnownNamesOnlyInAscendingOrder) {
  const AppEvent<> raised(L"Raised");
  const AppEvent<> dispatched(L"Dispatched");
  const auto last = AppEvent<>(VtrString(L"closed")).Subscribe([this] { log += "last "; });
  const auto first = closed.Subscribe([this] { log += "first "; });
  dispatched.Send();
  raised.Raise();
  events().DisableAllEvents();
  events().DisableAllEvents();
  EXPECT_TRUE(events().IsDisable(dispatched.Name()));
  EXPECT_FALSE(events().IsDisable(raised.Name()));
  AppEvent<>(L"closed").Send();
  moved.Send(1);
  closed.Send();
  events().EnableAllEvents(true);
  EXPECT_EQ(Notes(), "");
  events().EnableAllEvents(true);
  EXPECT_EQ(Notes(), "first a1last ");
}

TEST_F(Holds, EnablingAllSurvivesTheEndOfTheBroadcaster) {
  const auto ending = closed.Subscribe([] { IAppEventBroadcaster::ReleaseInstance(false); });
  events().DisableAllEvents();
  closed.Send();
  moved.Send(1);
  events().EnableAllEvents(true);
  EXPECT_EQ(log, "");
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

TEST_F(Holds, OfAScopeNestAndLeaveTheDisablingOfOthersAlone) {
  {
    const EventHold outer(moved);
    {
      EventHold inner(name);
      moved.Send(1);
      inner.Drop();
    }
    EXPECT_EQ(Notes(), "") << "the outer hold still keeps the event";
  }
  EXPECT_EQ(Notes(), "a1");
  events().DisableEvent(name);
  {
    const EventHold hold(moved);
    moved.Send(2);
  }
  EXPECT_TRUE(events().AnyPendingDisableEvents(name));
  {
    EventHold hold(moved);
    events().EnableEvent(name, true);
    hold.Drop();
  }
  EXPECT_EQ(Notes(), "");
  EXPECT_FALSE(events().IsDisable(name));
}

TEST_F(Holds, OfAScopeAreNotEndedByOthersNorEndWhatOthersDisabled) {
  {
    const EventHold hold(moved);
    moved.Send(1);
    events().EnableEvent(moved.Name(), true);
    EXPECT_EQ(Notes(), "");
    events().DisableEvent(moved.Name());
  }
  EXPECT_EQ(Notes(), "");
  EXPECT_TRUE(events().IsDisable(moved.Name()));
  events().EnableEvent(moved.Name(), true);
  EXPECT_EQ(Notes(), "a1");
}

TEST_F(Holds, OfAScopeEndOnceHoweverTheyAreMoved) {
  std::optional<EventHold> first(moved);
  moved.Send(1);
  EventHold second(std::move(*first));
  first.reset();
  EXPECT_TRUE(events().IsDisable(name));
  EventHold other(closed);
  other.Drop();
  other = std::move(second);
  EXPECT_FALSE(events().IsDisable(closed.Name()));
  auto& self = other;
  other = std::move(self);
  EXPECT_EQ(Notes(), "");
  other = EventHold(closed);
  EXPECT_EQ(Notes(), "a1");
  EventHold dropped(moved);
  moved.Send(2);
  dropped.Drop();
  EventHold(std::move(dropped));
  EXPECT_FALSE(events().IsDisable(name));
  EXPECT_EQ(Notes(), "");
}

TEST_F(Holds, OfAScopeThatOutliveTheBroadcasterSpareTheNextOne) {
  std::optional<EventHold> hold(moved);
  moved.Send(1);
  IAppEventBroadcaster::ReleaseInstance(false);
  hold.reset();
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
  hold.emplace(moved);
  IAppEventBroadcaster::ReleaseInstance(false);
  events().DisableEvent(name);
  hold.reset();
  EXPECT_TRUE(events().IsDisable(name));
}

TEST_F(Holds, OfAScopeGiveWhatAForeignEventThrowsToTheErrorHandler) {
  NoteFailures();
  {
    const EventHold hold(VtrString(L"Own"));
    auto thrown = std::make_shared<NotedEvent>(log, "own",
                                               [](auto&) { throw std::runtime_error("foreign"); });
    EXPECT_TRUE(NotedEvent::HoldIfDisabled(events(), L"Own", std::move(thrown)));
  }
  EXPECT_EQ(log, "own!Own:foreign");
}

}  // namespace
}  // namespace DataBinding::Testing

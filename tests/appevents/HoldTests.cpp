// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/EventHold.h"
#include "Events.h"

namespace DataBinding::Testing {
namespace {

class Holds : public Events {
 protected:
  Holds() { Listen('a'); }
};

TEST_F(Holds, ServeEventsOfTheApplicationsOwnKindAlsoWhenTheyThrow) {
  NoteFailures();
  const auto own =
      std::make_shared<NotedEvent>(log, "own", [](auto&) { throw std::runtime_error("foreign"); });

  EXPECT_FALSE(NotedEvent::HoldIfDisabled(events(), L"Own", own));

  events().DisableAllEvents();
  EXPECT_TRUE(events().IsDisable(L"Own")) << "known by having asked";

  {
    const EventHold hold(VtrString(L"Own"));
    EXPECT_TRUE(NotedEvent::HoldIfDisabled(events(), L"Own", own));
    EXPECT_TRUE(events().AnyPendingDisableEvents(L"Own"));
    events().EnableAllEvents(true);
  }

  EXPECT_EQ(Notes(), "own!Own:foreign");
}

TEST_F(Holds, WakeTheLoopForTheFailureOfAHeldEvent) {
  CountWakes();
  const auto own =
      std::make_shared<NotedEvent>(log, "", [](auto&) { throw std::runtime_error(""); });

  {
    const EventHold hold(VtrString(L"Own"));
    EXPECT_TRUE(NotedEvent::HoldIfDisabled(events(), L"Own", own));
  }

  EXPECT_EQ(wakes, 1);
  EXPECT_TRUE(events().HasFailure());
}

TEST_F(Holds, AllEndInAscendingOrderUntilTheBroadcasterIsReleased) {
  const AppEvent<> before(L"Before"), end(L"End");
  const auto heard = before.Subscribe([this] { log += "before "; });
  const auto ended = end.Subscribe([] { IAppEventBroadcaster::ReleaseInstance(false); });

  events().DisableAllEvents();
  moved.Send(1);
  end.Send();
  before.Send();

  EXPECT_EQ(Notes(), "");

  events().EnableAllEvents(true);
  EXPECT_EQ(Notes(), "before ");
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

TEST_F(Holds, HaveTheirEventUntilTheEndOfTheNameWasTold) {
  const Subscription told = events().ObserveDisabling([&](const VtrString& name) {
    if (!events().IsDisable(name)) events().DisableEvent(name);
  });
  events().DisableEvent(moved.Name());
  moved.Send(1);
  events().EnableEvent(moved.Name(), true);
  EXPECT_TRUE(events().AnyPendingDisableEvents(moved.Name()));
  moved.Send(2);
  const Subscription last = events().ObserveDisabling(
      [](const VtrString&) { IAppEventBroadcaster::ReleaseInstance(false); });
  const EventHold hold(closed);
  EXPECT_EQ(Notes(), "");
}

TEST_F(Holds, OfAScopeEndOnceHoweverTheyAreMoved) {
  std::optional<EventHold> first(moved);
  moved.Send(1);
  EventHold other(closed);

  other = std::move(*first);
  first.reset();
  EXPECT_FALSE(events().IsDisable(closed.Name()));

  auto& self = other;
  other = std::move(self);
  EXPECT_EQ(Notes(), "");

  other = EventHold(closed);
  EXPECT_EQ(Notes(), "a1");

  other.Drop();
  { const EventHold last(std::move(other)); }
  EXPECT_FALSE(events().IsDisable(closed.Name()));
}

}  // namespace
}  // namespace DataBinding::Testing

#include <map>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

class Holds : public Events {
 protected:
  Holds() { Listen('a'); }

  const VtrString name = moved.Name();
};

/// "d" disables, "e" and "x" enable with and without firing, "(" and ")" begin and end a hold, "-"
/// makes it drop, "." dispatches, "r" and "s" raise and send the next number, "~" drops the name.
/// Each notes what is heard and whether the name is disabled ("_") with an event kept ("*").
constexpr std::pair<const char*, const char*> plays[] = {
    {"rdd.sr.ee.", " __*****a3  "}, {"ds~sxed", "_*_*  _"}, {"((s-))", "__***a1 "},
    {"d(s)e", "__**a1 "},           {"d(se-)", "__*** "},   {"d(s-)x", "__*** "}};

TEST_F(Holds, KeepTheNewestEventUntilTheLastHoldAndDisablingEnd) {
  std::vector<EventHold> holds;
  int number = 0;
  const std::map<char, std::function<void()>> commands = {
      {'d', [&] { events().DisableEvent(name); }},
      {'e', [&] { events().EnableEvent(name, true); }},
      {'x', [&] { events().EnableEvent(name, false); }},
      {'(', [&] { holds.emplace_back(moved); }},
      {')', [&] { holds.pop_back(); }},
      {'-', [&] { holds.back().Drop(); }},
      {'.', [&] { events().DispatchPendingEvents(); }},
      {'r', [&] { moved.Raise(++number); }},
      {'s', [&] { moved.Send(++number); }},
      {'~', [&] { events().DropEvents(name); }}};
  for (const auto& [played, notes] : plays) {
    for (const char command : std::string(played)) {
      commands.at(command)();
      log += events().AnyPendingDisableEvents(name) ? "*" : events().IsDisable(name) ? "_" : " ";
    }
    EXPECT_EQ(Notes(), notes) << played;
    IAppEventBroadcaster::ReleaseInstance(false);
    subscriptions.clear();
    Listen('a');
    number = 0;
  }
}

TEST_F(Holds, ServeEventsOfTheApplicationsOwnKindAndHandleWhatTheyThrow) {
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

TEST_F(Holds, AllCoverTheNamesThatWereSubscribedToOrDispatched) {
  AppEvent<>(L"Dispatched").Send();
  AppEvent<>(L"Raised").Raise();
  for (int times = 0; times < 2; ++times) events().DisableAllEvents();
  events().EnableAllEvents(true);
  EXPECT_TRUE(events().IsDisable(L"Dispatched") && events().IsDisable(name));
  EXPECT_FALSE(events().IsDisable(L"Raised"));
  events().EnableAllEvents(true);
  EXPECT_FALSE(events().IsDisable(L"Dispatched") || events().IsDisable(name));
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

TEST_F(Holds, OfAScopeAreNotEndedByOthersNorEndWhatOthersDisabled) {
  {
    const EventHold hold(moved);
    moved.Send(1);
    events().EnableEvent(name, true);
    EXPECT_EQ(Notes(), "");
    events().DisableEvent(name);
  }
  EXPECT_TRUE(events().IsDisable(name));
  EXPECT_EQ(Notes(), "");
  events().EnableEvent(name, true);
  EXPECT_EQ(Notes(), "a1");
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

TEST_F(Holds, OfAScopeThatOutliveTheBroadcasterSpareTheNextOne) {
  for (const bool isThereNext : {false, true}) {
    const EventHold hold(moved);
    moved.Send(1);
    IAppEventBroadcaster::ReleaseInstance(false);
    if (isThereNext) events().DisableEvent(name);
  }
  EXPECT_TRUE(events().IsDisable(name));
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include <optional>

#include "../appevents/Events.h"
#include "Attempts.h"
#include "DataBinding/appevents/AppEventListener.h"
#include "DataBinding/appevents/EventHold.h"
#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/foundation/Singleton.h"
#include "DataBinding/foundation/StringSplit.h"
#include "DataBinding/framework/TextConverter.h"

namespace DataBinding::Testing {
namespace {

class Handler final : public AppEventListener {
 public:
  explicit Handler(std::string& log, bool activate) : AppEventListener(activate), marks(log) {}
  void InitEventMap() override {
    if (!IsEventMapInitialised()) On(moved, &Handler::Note);
    AppEventListener::InitEventMap();
  }

 private:
  void Note(int /*value*/) { marks += 'h'; }
  std::string& marks;
};

struct World : Events {
  World() {
    log.reserve(50);
    subscriptions.reserve(5);
    static_cast<void>(WAppEventRegistrar::GetInstance());
    static_cast<void>(events());
  }
  void TestBody() override {}
  void OnEvent(const VtrString& /*name*/, const std::vector<Any>& /*arguments*/) { log += 'e'; }
  std::string Moved() {
    moved.Raise(1);
    return Dispatched();
  }
};

class Once final : public Singleton<Once> {};

TEST(FailingAllocations, InTheQueueLoseNoEvent) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    attempt([&] { w.Listen('a'); });
    attempt([&] { w.Listen('b'); });
    attempt([&] { moved.Raise(1); });
    attempt([&] { closed.Raise(); });
    attempt([&] { moved.RaiseLatest(2); });
    attempt([&] { w.events().DispatchPendingEvents(); });  // nobody knows the other one yet
    EXPECT_EQ(w.Notes(), "a2b2");
    attempt([&] { w.events().DisableEvent(L"Closed"); });
    closed.Raise();
    moved.Raise(3);
    attempt([&] { w.events().DispatchPendingEvents(); });
    EXPECT_EQ(w.Notes(), "a3b3");
    attempt([&] { return w.events().RegisterEventHook(EventHook::To<&World::OnEvent>(w)) != 0; });
    EXPECT_EQ(w.Moved(), "a1b1e");
    moved.Raise(4);
    closed.Raise();
    moved.Raise(5);
    attempt([&] { w.events().DropEvents(L"Moved"); });
    EXPECT_EQ(w.Dispatched(), "");
    attempt([&] { moved.Send(6); });
    EXPECT_EQ(w.Notes().substr(0, 4), "a6b6");
    attempt([&] { w.events().DropEventsFrom(ThisModule()); });
  });
}

TEST(FailingAllocations, InDisablingLeaveTheCountsAsTheyWere) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    std::optional<EventHold> hold;
    w.Listen('a');
    w.subscriptions.push_back(closed.Subscribe([] {}));
    attempt([&] { hold.emplace(moved); });
    EXPECT_EQ(w.Moved(), "");
    hold->Drop();
    hold.reset();
    attempt([&] { w.events().DisableAllEvents(); });
    attempt([&] { w.events().DisableEvent(L"Moved"); });
    EXPECT_EQ(w.Moved(), "");
    w.events().EnableAllEvents(true);
    EXPECT_FALSE(w.events().IsDisable(L"Closed"));
    EXPECT_EQ(w.Notes(), "");
    w.events().EnableEvent(L"Moved", true);
    EXPECT_EQ(w.Notes(), "a1");
  });
}

TEST(FailingAllocations, InWhatListensLeaveItToBeDoneAgain) {
  Attempts::Of([](Attempts& attempt) {
    World w;
    std::optional<Handler> handler;
    std::optional<Handler> late;
    std::optional<IdlePass> idle;
    attempt([&] { handler.emplace(w.log, true); });
    attempt([&] { late.emplace(w.log, false); });
    EXPECT_EQ(w.Moved(), "h");
    attempt([&] { late->ActivateAppEventListeners(); });
    attempt([&] { WAppEventRegistrar::GetInstance().UnregisterAppEvents(); });
    EXPECT_EQ(w.Moved(), "hh");
    attempt([&] { late.reset(); });
    attempt([&] { idle.emplace([&w] { w.log += 'w'; }); });
    moved.Raise(1);
    attempt([&] { idle->Run(); });
    EXPECT_EQ(w.Notes(), "wh");
    attempt([&] { w.events().AddCleanupCallback(&w, [&w] { w.log += 'x'; }); });
    IAppEventBroadcaster::ReleaseInstance(false);
    EXPECT_EQ(w.Notes(), "x");
    attempt([&] { static_cast<void>(Once::GetInstance()); });
    Once::ReleaseInstance(false);
    attempt([&] { handler.reset(); });
  });
}

TEST(EventMemory, KeepsNoMoreBlocksOfABurstThanABound) {
  constexpr int burst = 20000;
  World w;
  const auto before = LiveAllocations();

  for (int i = 0; i < burst; ++i) moved.Raise(i);
  w.events().DispatchPendingEvents();

  EXPECT_LT(LiveAllocations() - before, burst / 10);
}

TEST(FailingAllocations, InTextsChangeNone) {
  Attempts::Of([](Attempts& attempt) {
    VtrString text = L"as it was";
    attempt([&] { text.Format(L"%3d %s", 7, L"a, b"); });
    attempt([&] { text += VtrString::FromUtf8(", \xC3\xA4"); });
    attempt([&] { EXPECT_EQ(String::Split(text, L',', false, true).size(), 3u); });
    attempt([&] { EXPECT_EQ(text.ToUtf8(), "  7 a, b, \xC3\xA4"); });
    attempt([&] { EXPECT_FALSE(TextConverter<double>().parse(text)); });
    attempt([&] {
      try {
        text.Format(L"%d");
      } catch (const std::invalid_argument&) {
      }
    });
  });
}

}  // namespace
}  // namespace DataBinding::Testing

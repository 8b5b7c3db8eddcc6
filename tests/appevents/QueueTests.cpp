// SPDX-License-Identifier: Apache-2.0
#include <unordered_map>

#include "DataBinding/appevents/ThreadingPolicy.h"
#include "Events.h"

namespace DataBinding::Testing {
namespace {

TEST_F(Events, UpdateCallbackMayBeMissing) { EXPECT_TRUE(AEB::UpdatePolicy().PostUpdate()); }

TEST_F(Events, UpdateCallbackIsOneForAllBroadcasters) {
  AEB::UpdatePolicy::SetUpdateUICallback([this] {
    AEB::UpdatePolicy::SetUpdateUICallback({});  // in the middle of its own run
    log += 'a';
  });
  OwnBroadcaster().QueueEvent(L"A", std::make_shared<NotedEvent>(log, "A"));
  events().QueueEvent(L"A", nullptr);

  EXPECT_EQ(log, "a");
}

TEST_F(Events, OfAnOwnKindAreDeliveredAtOnceWhenTheyAreSent) {
  events().SendEvent(std::make_shared<NotedEvent>(log, "e"));
  events().SendEvent(nullptr);

  EXPECT_EQ(log, "e");
}

TEST_F(Events, DroppedInADeliveryAreNotReachedAnyMoreThoughOneIsQueuedTwice) {
  const auto twice = std::make_shared<NotedEvent>(
      log, "e", [](PolicyEventBroadcaster& broadcaster) { broadcaster.DropEvents(L"E"); });
  for (int i = 0; i < 2; ++i) events().QueueEvent(L"E", twice);
  EXPECT_EQ(Dispatched(), "e");
}

TEST_F(Events, OfTwoNamesWhoseHashesMeetDoNotReplaceEachOther) {
  std::unordered_map<std::uint32_t, VtrString> names;
  VtrString one, other;
  for (int number = 0; one == other; ++number) {
    other = VtrString(std::to_wstring(number).c_str());
    one = names.emplace(static_cast<std::uint32_t>(std::hash<VtrString>()(other)), other)
              .first->second;
  }
  const AppEvent<> first(one), second(other);

  for (const auto* event : {&first, &second}) {
    subscriptions.push_back(
        event->Subscribe([this, event] { log += event->Name().ToUtf8() + " "; }));
    event->RaiseLatest();
  }

  EXPECT_EQ(Dispatched(), one.ToUtf8() + " " + other.ToUtf8() + " ");
}

TEST_F(Events, MayChangeTheQueueWhileTheirArgumentsEnd) {
  const std::function<void()> acts[] = {[] { events().DropEvents(L"Ending"); },
                                        [] { events().DropEventsFrom(ThisModule()); },
                                        [] { events().DispatchPendingEvents(); },
                                        [] { IAppEventBroadcaster::ReleaseInstance(false); }};
  const auto abandon = [] {
    EXPECT_EQ(Thrown([] { events().DispatchPendingEvents(); }), "foreign");
  };
  const std::function<void()> ends[] = {acts[0], acts[1], acts[2], abandon};

  for (const auto& act : acts) {
    for (const auto& end : ends) {
      events().DisableEvent(L"Ending");
      int ended = 0;
      ending.Send(AtEnd([&] { ++ended, act(); }));
      Queue(L"A", "", [&](auto&) {
        if (&end == &ends[3]) throw std::runtime_error("foreign");
      });
      ending.Raise(AtEnd([&] { ++ended; }));  // gone when the others act
      for (int i = 0; i < 2; ++i) ending.Raise(AtEnd([&] { ++ended, act(); }));
      end();
      IAppEventBroadcaster::ReleaseInstance(false);
      EXPECT_EQ(ended, 4);
    }
  }
}

TEST_F(Events, ThatAreLeftWhenTheBroadcasterEndsInADispatchAreReleasedUndelivered) {
  const auto queued = std::make_shared<NotedEvent>(log, "queued");
  const auto held = std::make_shared<NotedEvent>(log, "held");

  events().DisableEvent(L"B");

  EXPECT_TRUE(NotedEvent::HoldIfDisabled(events(), L"B", held));

  Queue(L"A", "nest", [&](auto& broadcaster) {
    Queue(L"A", "release", [&](auto&) {
      events().QueueEvent(L"A", queued);
      IAppEventBroadcaster::ReleaseInstance(false);
    });
    broadcaster.DispatchPendingEvents();
  });
  const auto rest = std::make_shared<NotedEvent>(log, "rest");
  events().QueueEvent(L"A", rest);
  EXPECT_EQ(Dispatched(), "nestrelease");
  EXPECT_EQ(queued.use_count() + held.use_count() + rest.use_count(), 3);
  EXPECT_FALSE(IAppEventBroadcaster::HasInstance());
}

/// Enters twice, which the analysis of locks does not know to be allowed.
void CountInside(AEB::ThreadingPolicy& policy, int& count)
    DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  policy.EnterCriticalSection();
  policy.EnterCriticalSection();
  policy.LeaveCriticalSection();
  ++count;
  policy.LeaveCriticalSection();
}

TEST(ThreadingPolicies, LetNobodyInAgainButTheirOwnThread) {
  AEB::ThreadingPolicy policy;
  int count = 0;
  std::vector<std::jthread> threads;
  const auto countUp = [&] {
    for (int round = 0; round < 5000; ++round) CountInside(policy, count);
  };

  for (int thread = 0; thread < 4; ++thread) threads.emplace_back(countUp);
  threads.clear();

  EXPECT_EQ(count, 20000);
}

}  // namespace
}  // namespace DataBinding::Testing

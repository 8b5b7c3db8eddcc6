#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <map>

#include "Events.h"

namespace DataBinding::Testing {
namespace {

using namespace std::chrono_literals;

class IdlePasses : public Events {
 protected:
  /// A pass that counts its wakes.
  std::unique_ptr<IdlePass> Pass() {
    return std::make_unique<IdlePass>([this] { ++wakes; });
  }
  std::string Run(IdlePass& pass) {
    pass.Run();
    return Notes();
  }
  static std::string ThrownBy(IdlePass& pass) {
    return Thrown([&] { pass.Run(); });
  }
};

TEST_F(IdlePasses, WakeOncePerRunAndFeedModalLoopsThatListenersRun) {
  moved.Raise(1);
  const auto pass = Pass();
  EXPECT_EQ(wakes, 1) << "an event was waiting already";
  Listen('a', [&] {
    if (log != "a1") return;
    EXPECT_FALSE(pass->IsRequested() || events().HasPendingEvents());
    moved.Raise(3);
    EXPECT_EQ(wakes, 2);
    pass->Run();
    moved.Raise(4);
    EXPECT_EQ(wakes, 3);
  });
  moved.Raise(9);
  closed.Raise();
  moved.RaiseLatest(2);
  EXPECT_EQ(wakes, 1);
  EXPECT_EQ(Run(*pass), "a1a3a2");
  EXPECT_TRUE(pass->IsRequested());
  EXPECT_EQ(Run(*pass) + Run(*pass), "a4");
  EXPECT_EQ(wakes, 3);
}

TEST_F(IdlePasses, InAModalLoopLeaveAFailureToTheOuterRun) {
  const auto pass = Pass();
  Listen('a', [] { throw std::runtime_error("first"); });
  Listen('b', [&] {
    closed.Raise();
    EXPECT_NO_THROW(pass->Run());
    log += "modal over ";
  });
  Listen('c');
  moved.Raise(1);
  EXPECT_EQ(ThrownBy(*pass), "first");
  EXPECT_EQ(Notes(), "a1b1modal over c1");
  EXPECT_EQ(pass->DroppedFailures(), 0u);
}

TEST_F(IdlePasses, GiveTheFormerCallbackAndWhatIsLeftBackInWhateverOrderTheyEnd) {
  std::array<std::size_t, 3> order{0, 1, 2};
  do {
    AEB::UpdatePolicy::SetUpdateUICallback([this] { log += 'x'; });
    std::array<std::unique_ptr<IdlePass>, 3> passes;
    for (std::size_t i = 0; i < 3; ++i)
      passes[i] = std::make_unique<IdlePass>([this, i] { log += std::to_string(i); });
    for (const std::size_t ended : order) {
      passes[ended].reset();
      closed.Raise();
      std::string newest = "x";
      for (std::size_t i = 0; i < 3; ++i) {
        if (passes[i] == nullptr) continue;
        newest = std::to_string(i);
        passes[i]->Run();
      }
      EXPECT_EQ(Notes(), newest);
      events().DispatchPendingEvents();
    }
  } while (std::ranges::next_permutation(order).found);
  auto pass = Pass();
  closed.Raise();
  pass.reset();
  EXPECT_EQ(Notes(), "x");
}

TEST_F(IdlePasses, ThrowTheFirstFailureOnceWhenAllIsDelivered) {
  const auto pass = Pass();
  Listen('a', [this] { throw std::runtime_error(log); });
  Listen('b');
  moved.Raise(1);
  moved.Raise(2);
  EXPECT_EQ(ThrownBy(*pass), "a1");
  EXPECT_EQ(Notes(), "a1b1a2b2");
  EXPECT_EQ(pass->DroppedFailures(), 1u);
  EXPECT_EQ(ThrownBy(*pass), "");
  moved.Send(3);
  EXPECT_TRUE(pass->IsRequested());
  EXPECT_EQ(ThrownBy(*pass), "a3") << "what was thrown outside the pass";
  EXPECT_EQ(pass->DroppedFailures(), 0u);
}

TEST_F(IdlePasses, LetAForeignEventsExceptionThroughAndComeBackForWhatRemains) {
  const auto pass = Pass();
  Listen('a', [] { throw std::runtime_error("listener"); });
  moved.Raise(1);
  Queue(L"A", "f", [](auto&) { throw std::runtime_error("foreign"); });
  Queue(L"A", "lost");
  EXPECT_EQ(ThrownBy(*pass), "foreign");
  EXPECT_TRUE(pass->IsRequested()) << "for the listener's failure";
  EXPECT_EQ(ThrownBy(*pass), "listener");
  EXPECT_EQ(log, "a1f");
  EXPECT_EQ(wakes, 2);
}

TEST_F(IdlePasses, DeliverOneEventAtLeastAndKeepTheOthersWhenTheTimeIsUp) {
  const auto pass = Pass();
  Listen('a');
  for (const int value : {1, 2, 3}) moved.Raise(value);
  closed.RaiseLatest();
  moved.RaiseLatest(4);  // takes the place of 3
  for (const auto* heard : {"a1", "a2", "", "a4"}) {
    EXPECT_TRUE(pass->IsRequested() && events().HasUndeliveredEvents());
    pass->RunFor(0ns);
    EXPECT_EQ(Notes(), heard);
  }
  EXPECT_FALSE(pass->IsRequested() || events().HasUndeliveredEvents());
  EXPECT_EQ(wakes, 4);
}

TEST_F(IdlePasses, WithTimeLeftDeliverNothingThatIsRaisedMeanwhile) {
  const auto pass = Pass();
  Listen('a', [&] {
    if (log == "a1") moved.RaiseLatest(3);  // in place of 2
    if (log == "a1") events().DropEvents(closed.Name());
    moved.Raise(4);
  });
  moved.Raise(1);
  closed.Raise();
  moved.Raise(2);
  pass->RunFor(std::chrono::nanoseconds::max());
  EXPECT_EQ(Notes(), "a1");
  EXPECT_TRUE(pass->IsRequested());
  pass->RunFor(1h);
  EXPECT_EQ(Notes(), "a3a4");
}

TEST_F(IdlePasses, WithTimeLeftFeedAModalLoopWithTheRestInOrder) {
  const auto pass = Pass();
  Listen('a', [&] {
    if (log != "a1") return;
    moved.Raise(4);
    pass->RunFor(0ns);
    EXPECT_TRUE(pass->IsRequested());
    pass->Run();
    log += "modal over ";
  });
  for (const int value : {1, 2, 3}) moved.Raise(value);
  pass->RunFor(1h);
  EXPECT_EQ(Notes(), "a1a2a3a4modal over ");
}

TEST_F(IdlePasses, WithTimeLeftKeepWhatIsBehindAForeignEventsException) {
  const auto pass = Pass();
  Queue(L"A", "f", [](auto&) { throw std::runtime_error("foreign"); });
  Queue(L"A", "kept");
  EXPECT_EQ(Thrown([&] { pass->RunFor(1h); }), "foreign");
  EXPECT_TRUE(pass->IsRequested());
  EXPECT_EQ(Run(*pass), "fkept");
}

TEST_F(IdlePasses, TellWhetherAnythingIsStillToCome) {
  const auto pass = Pass();
  Listen('a', [this] { log += events().HasUndeliveredEvents() ? "+" : "."; });
  for (const int value : {1, 2, 3}) moved.Raise(value);
  Queue(L"A", "b", [](auto& broadcaster) {
    moved.Send(4);
    broadcaster.DropEvents(L"Moved");
    moved.Send(5);
  });
  moved.Raise(6);
  EXPECT_EQ(Run(*pass), "a1+a2+a3+ba4+a5.");
  EXPECT_FALSE(events().HasUndeliveredEvents());
}

TEST_F(IdlePasses, WokenInVainAreWokenByAReplacingEventToo) {
  bool isLoopFull = true;
  IdlePass pass([&] {
    if (std::exchange(isLoopFull, false)) throw std::runtime_error("full");
    ++wakes;
  });
  Listen('a');
  EXPECT_THROW(moved.RaiseLatest(1), std::runtime_error);
  moved.RaiseLatest(2);
  EXPECT_EQ(wakes, 1);
  moved.RaiseLatest(3);
  EXPECT_EQ(wakes, 1);
  EXPECT_EQ(Run(pass), "a3");
}

TEST_F(IdlePasses, ThatCannotBeMadeSinceTheWakeThrowsLeaveTheCallbackAsItWas) {
  CountWakes();
  closed.Raise();
  const auto full = [] { throw std::runtime_error("wake"); };
  EXPECT_THROW(const IdlePass pass{full}, std::runtime_error);
  closed.Raise();
  EXPECT_EQ(wakes, 2);
}

TEST_F(IdlePasses, MayEndAndReleaseTheBroadcasterWhileTheyRun) {
  for (const int variant : {0, 1, 2, 3}) {
    const bool releases = variant % 2 == 1;
    auto pass = Pass();
    Listen('a', [&] {
      moved.Raise(2);
      releases ? IAppEventBroadcaster::ReleaseInstance(false) : pass.reset();
      throw std::runtime_error("listener");
    });
    moved.Raise(1);
    auto* const running = pass.get();
    EXPECT_EQ(Thrown([&] { variant < 2 ? running->Run() : running->RunFor(1h); }),
              releases ? "" : "listener");
    EXPECT_EQ(Notes(), "a1");
    EXPECT_EQ(IAppEventBroadcaster::HasInstance(), !releases);
    subscriptions.clear();
    events().DropEvents(moved.Name());
  }
}

TEST_F(IdlePasses, LoseNothingThatFourThreadsRaiseAndKeepTheOrderOfEach) {
  const AppEvent<int, int> counted(L"Counted");
  std::atomic<bool> awake{false};
  IdlePass pass([&] { awake = true; });
  std::map<int, int> next;
  const auto order = counted.Subscribe(
      [&](const int& thread, const int& number) { EXPECT_EQ(next[thread]++, number); });
  subscriptions.push_back(moved.Subscribe([&](const int& number) { next[-1] = number; }));
  std::atomic<int> running{4};
  const auto raise = [&](int thread) {
    for (int i = 0; i < 3000; ++i) {
      counted.Raise(thread, i);
      if (thread == 0) moved.RaiseLatest(i);
    }
    --running;
  };
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) threads.emplace_back(raise, thread);
  for (bool more = true; more;) {
    more = running > 0;
    events().DropEvents(closed.Name());
    if (awake.exchange(false)) pass.Run();
    more = more || awake;
  }
  EXPECT_EQ(next, (std::map<int, int>{{-1, 2999}, {0, 3000}, {1, 3000}, {2, 3000}, {3, 3000}}));
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/IdlePass.h"

#include <algorithm>
#include <array>
#include <chrono>

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

TEST_F(IdlePasses, GiveTheFormerCallbackBackInWhateverOrderTheyEnd) {
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
}

TEST_F(IdlePasses, LeaveWhatIsStillToComeToTheFormerCallback) {
  AEB::UpdatePolicy::SetUpdateUICallback([this] { log += 'x'; });
  auto pass = Pass();
  closed.Raise();
  pass.reset();
  EXPECT_EQ(Notes(), "x");
}

TEST_F(IdlePasses, ComeBackForWhatAForeignEventsExceptionLeaves) {
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

  for (const bool isTimed : {false, true}) {
    for (const int value : {1, 2, 3}) moved.Raise(value);
    Queue(L"A", "b", [](auto& broadcaster) {
      moved.Send(4);
      broadcaster.DropEvents(L"Moved");
      moved.Send(5);
    });
    moved.Raise(6);
    isTimed ? pass->RunFor(std::chrono::nanoseconds::max()) : pass->Run();
    EXPECT_EQ(Notes(), "a1+a2+a3+ba4+a5.");
    EXPECT_FALSE(events().HasUndeliveredEvents());
  }
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

TEST_F(IdlePasses, MayEndOrLoseTheBroadcasterWhileTheyRun) {
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

}  // namespace
}  // namespace DataBinding::Testing

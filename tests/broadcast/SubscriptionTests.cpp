// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <DataBinding/foundation/CallbackList.h>
#include <DataBinding/foundation/Event.h>
#include <DataBinding/foundation/PauseListening.h>
#include <gtest/gtest.h>

#include "../support/Gate.h"
#include "Notifier.h"

namespace DataBinding {
namespace {

TEST(RegisterOnce, CallbackThatAnnouncesItsOwnPropertyIsCalledOnce) {
  Notifier notifier;
  int runs = 0;
  const auto once = notifier.ListenOnce([&, moveOnly = std::make_unique<int>(1)] {
    runs += *moveOnly;
    notifier.UpdateListeners(L"A");
  });

  notifier.UpdateListeners(L"A");

  EXPECT_FALSE(notifier.AreListenersAvailable(L"A"));

  notifier.UpdateListeners(L"A");
  EXPECT_EQ(runs, 1);
}

TEST(RegisterOnce, OneOfSeveralThreadsThatAnnounceAtATimeCallsIt) {
  for (int round = 0; round < 200; ++round) {
    Notifier notifier;
    std::atomic<int> runs{0};
    Testing::Gate start(3);
    const auto announce = [&] {
      start.ArriveAndWait();
      notifier.UpdateListeners(L"A");
    };
    std::array<std::jthread, 2> announcing{std::jthread(announce), std::jthread(announce)};
    start.ArriveAndWait();
    const auto once = notifier.RegisterOnce([&] { ++runs; }, L"A");
    for (auto& thread : announcing) thread.join();
    notifier.UpdateListeners(L"A");
    ASSERT_EQ(runs, 1);
    ASSERT_FALSE(notifier.AreListenersAvailable(L"A"));
  }
}

TEST(RegisterOnce, CallbackThatThrowsIsNotCalledAgain) {
  Notifier notifier;
  int runs = 0;
  const auto once = notifier.RegisterOnce([&] { throw ++runs; }, L"A");

  notifier.UpdateListeners(L"A");
  notifier.UpdateListeners(L"A");

  EXPECT_EQ(runs, 1);
}

TEST(RegisterOnce, CallbackMayOwnItsSubscription) {
  Notifier notifier;
  const auto held = std::make_shared<Subscription>();
  const std::weak_ptr<Subscription> end = held;

  *held = notifier.RegisterOnce([&, own = held] { *own = notifier.Log('n'); }, L"A");

  EXPECT_EQ(notifier.Announce(), "");
  EXPECT_EQ(notifier.Announce(), "n");
  EXPECT_EQ(end.use_count(), 1);
}

/// One registration of each kind, and how often what it was registered with has called it.
class Pausing : public testing::Test {
 protected:
  int Announce() {
    heard = 0;
    notifier.UpdateListeners(L"A");
    list.Call();
    event.Raise();
    return heard;
  }

  int heard = 0;
  Notifier notifier;
  CallbackList<> list;
  Event<void()> event;
  std::array<Subscription, 4> each{notifier.RegisterAny([this](const VtrString&) { ++heard; }),
                                   notifier.Listen([this] { ++heard; }),
                                   list.Add([this] { ++heard; }),
                                   event.Subscribe([this] { ++heard; })};
};

TEST_F(Pausing, RegistrationHearsAgainAfterTheLastOfItsPauses) {
  for (const auto& subscription : each) {
    std::optional<PauseListening> outer(subscription);
    {
      const PauseListening inner(subscription);
      EXPECT_EQ(Announce(), 3);
    }
    EXPECT_EQ(Announce(), 3);
    outer.reset();
    EXPECT_EQ(Announce(), 4);
  }

  EXPECT_EQ(notifier.GetNumRegistered(L"A"), 1u);
}

TEST_F(Pausing, SubscriptionMayEndFirst) {
  for (auto& subscription : each) {
    const PauseListening paused(subscription);
    subscription.Cancel();
  }

  EXPECT_EQ(Announce(), 0);

  const PauseListening inert(each[0]);
  Subscription ofAnother([this] { ++heard; });
  const PauseListening withoutEffect(ofAnother);
  ofAnother.CancelAndWait();
  EXPECT_EQ(heard, 1);
}

TEST(PauseListening, ListenerOfARunningAnnouncementIsPassedOverHoweverManyRegisterMeanwhile) {
  Notifier notifier;
  Subscription second;
  std::vector<Subscription> added;
  std::optional<PauseListening> pause;
  const auto first = notifier.Listen([&] {
    pause.reset();
    for (int i = 0; i < 5; ++i) added.push_back(notifier.Log('n'));
    if (added.size() == 5) pause.emplace(second);
  });
  second = notifier.Log('2');

  EXPECT_EQ(notifier.Announce(), "");
  EXPECT_EQ(notifier.Announce(), "2nnnnn");
  EXPECT_EQ(notifier.Announce(), "2nnnnnnnnnn");
}

TEST(PauseListening, BroadcasterMayEndFirst) {
  auto notifier = std::make_unique<Notifier>();
  const auto subscription = notifier->Log('1');
  const PauseListening paused(subscription);
  notifier.reset();
  const PauseListening again(subscription);
}

TEST(CancelAndWait, AnnouncementUnderWayDoesNotCallItAnyMore) {
  Notifier notifier;
  Subscription second;
  std::vector<Subscription> added;
  const auto first = notifier.Listen([&] {
    for (int i = 0; i < 5; ++i) added.push_back(notifier.Log('n'));
    second.CancelAndWait();
  });
  second = notifier.Log('2');
  const auto third = notifier.Log('3');

  EXPECT_EQ(notifier.Announce(), "3");
}

TEST(CancelAndWait, ReturnsInsideTheCallbackHoweverDeepItsAnnouncementsNest) {
  Notifier notifier;
  Subscription own;
  int depth = 0;

  own = notifier.Listen([&] {
    if (++depth < 9) return notifier.UpdateListeners(L"A");
    own.CancelAndWait();
  });
  notifier.UpdateListeners(L"A");

  EXPECT_EQ(depth, 9);

  CallbackList<> list;
  own = list.Add([&] { own.CancelAndWait(); });
  list.Call();
}

/// Another thread that is in a callback until it is let go on.
class Busy {
 public:
  void Stay() {
    isInside = true;
    while (!mayLeave) std::this_thread::yield();
    isInside = false;
  }
  void WaitUntilInside() const {
    while (!isInside) std::this_thread::yield();
  }

  std::atomic<bool> isInside{false};
  std::atomic<bool> mayLeave{false};
};

enum class Kind { OfAName, OfAnyName, OfAList };

/// The parameter says what kind of registration is ended, and whether another one is made while its
/// callback runs.
class CancelAndWaitOnThreads : public testing::TestWithParam<std::pair<Kind, bool>> {};

TEST_P(CancelAndWaitOnThreads, ReturnsWhenTheOtherThreadHasLeftTheCallback) {
  const Kind kind = GetParam().first;
  const bool grows = GetParam().second;

  for (int round = 0; round < 100; ++round) {
    Notifier notifier;
    CallbackList<> list;
    Busy busy;
    auto stays = kind == Kind::OfAList ? list.Add([&] { busy.Stay(); })
                 : kind == Kind::OfAName
                     ? notifier.Listen([&] { busy.Stay(); })
                     : notifier.RegisterAny([&](const VtrString&) { busy.Stay(); });
    const std::jthread announcing([&] { list.Call(), notifier.UpdateListeners(L"A"); });
    busy.WaitUntilInside();
    const std::array later{grows ? notifier.Listen([] {}) : Subscription(),
                           grows ? notifier.LogAny('n') : Subscription()};
    const std::jthread letting([&] {
      for (int i = 0; i < 50; ++i) std::this_thread::yield();
      busy.mayLeave = true;
    });
    stays.CancelAndWait();
    ASSERT_FALSE(busy.isInside);
  }
}

INSTANTIATE_TEST_SUITE_P(EachKind, CancelAndWaitOnThreads,
                         testing::Values(std::pair{Kind::OfAName, false},
                                         std::pair{Kind::OfAName, true},
                                         std::pair{Kind::OfAnyName, true},
                                         std::pair{Kind::OfAList, false}));

TEST(CancelAndWait, WaitsAlsoWhenTheCallbackHasEndedTheBroadcaster) {
  auto notifier = std::make_unique<Notifier>();
  Busy busy;
  auto stays = notifier->Listen([&] {
    notifier.reset();
    busy.Stay();
  });
  const std::jthread announcing([&] { notifier->UpdateListeners(L"A"); });
  busy.WaitUntilInside();
  const std::jthread letting([&] {
    for (int i = 0; i < 50; ++i) std::this_thread::yield();
    busy.mayLeave = true;
  });

  stays.CancelAndWait();
  EXPECT_FALSE(busy.isInside);
}

/// Ends its subscription when the process ends.
struct AtExit {
  ~AtExit() { subscription.CancelAndWait(); }
  Subscription subscription;
};

TEST(CancelAndWait, ReturnsInAStaticDestructorWhereACallbackHasCalledExit) {
  const auto leave = [] {
    static AtExit atExit;
    Notifier notifier;
    atExit.subscription = notifier.Listen([] { std::exit(7); });
    notifier.UpdateListeners(L"A");
  };

  EXPECT_EXIT(leave(), testing::ExitedWithCode(7), "");
}

TEST(CancelAndWait, DoesNotWaitForAnotherCallbackOfTheProperty) {
  Notifier notifier;
  Busy busy;
  std::atomic<bool> isCalled{false};
  const auto stays = notifier.Listen([&] { busy.Stay(); });
  auto behind = notifier.Listen([&] { isCalled = true; });
  auto behindAll = notifier.RegisterAny([&](const VtrString&) { isCalled = true; });
  const std::jthread announcing([&] { notifier.UpdateListeners(L"A"); });

  busy.WaitUntilInside();
  behind.CancelAndWait();
  behindAll.CancelAndWait();

  EXPECT_TRUE(busy.isInside);
  EXPECT_FALSE(isCalled);

  busy.mayLeave = true;
}

}  // namespace
}  // namespace DataBinding

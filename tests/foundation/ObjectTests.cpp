// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "../support/Gate.h"
#include "DataBinding/foundation/ComlikePtr.h"
#include "DataBinding/foundation/Event.h"
#include "DataBinding/foundation/Guid.h"
#include "DataBinding/foundation/LogMessage.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {
namespace {

TEST(Subscriptions, EndTheirRegistrationOnce) {
  std::string log;
  const auto ending = [&log](char letter) {
    return Subscription(OneShotCallback<void()>([&log, letter] { log += letter; }));
  };

  {
    Subscription cancelled = ending('a');
    cancelled.Cancel();
    cancelled.Cancel();
    const Subscription dropped = ending('b');
    EXPECT_EQ(log, "a");
  }

  Subscription former = ending('c');
  Subscription latter = ending('d');
  former = std::move(latter);
  auto& self = former;
  former = std::move(self);
  EXPECT_EQ(log, "abc");

  former = Subscription();
  EXPECT_EQ(log, "abcd");
}

TEST(Subscriptions, MayBeTouchedByWhatEndsThem) {
  int calls = 0;
  auto subscription = std::make_unique<Subscription>();

  *subscription = Subscription(OneShotCallback<void()>([&] {
    ++calls;
    subscription->Cancel();  // the one that replaces this
  }));
  *subscription = Subscription(OneShotCallback<void()>([&] {
    ++calls;
    subscription.reset();
  }));

  EXPECT_EQ(calls, 2);
}

class MulticastEvents : public ::testing::Test {
 protected:
  /// Subscribes a listener that notes its letter and the value, and then acts.
  void Listen(char letter, const RepeatingCallback<void()>& act = {}) {
    subscriptions.push_back(event->Subscribe([this, letter, act](const int& value) {
      (log += letter) += std::to_string(value);
      act();
    }));
  }

  std::unique_ptr<Event<void(int)>> event = std::make_unique<Event<void(int)>>();
  std::vector<Subscription> subscriptions;
  std::string log;
};

TEST_F(MulticastEvents, RaisePassesOverListenersThatComeOrGoMeanwhile) {
  Listen('a', [&] {
    subscriptions[0].Cancel();  // itself
    subscriptions[1].Cancel();
    Listen('d');
  });
  Listen('b');
  Listen('c');

  event->Raise(1);
  event->Raise(2);

  EXPECT_EQ(log, "a1c1c2d2");
}

TEST_F(MulticastEvents, MayEndInANestedRaise) {
  Listen('a', [&] {
    if (log.size() == 2) event->Raise(2);
  });
  Listen('b', [&] { event.reset(); });
  Listen('c');

  event->Raise(1);

  EXPECT_EQ(log, "a1a2b2");

  subscriptions.clear();
}

TEST_F(MulticastEvents, ExceptionThatLeavesARaiseHarmsNoLaterOne) {
  subscriptions.push_back(event->Subscribe(RepeatingCallback<void(int)>()));
  subscriptions.push_back(
      event->Subscribe(RepeatingCallback<void()>([&] { FAIL(); }).GetMemento()));
  Listen('a', [&] {
    if (log != "a1a2") throw std::runtime_error("listener");
  });
  Listen('b');

  EXPECT_THROW(event->Raise(1), std::runtime_error);

  event->Raise(2);
  event->RaiseEach([&] { log += '!'; }, 3);
  EXPECT_EQ(log, "a1a2b2a3!b3");
}

TEST_F(MulticastEvents, MayEndCallbacksThatOwnSubscriptionsToThem) {
  auto others = std::make_shared<std::vector<Subscription>>();
  for (int each = 0; each < 3; ++each) {
    others->push_back(event->Subscribe([others](const int&) {}));
    Listen('a');
  }
  const std::weak_ptr<void> owned = others;

  others.reset();
  event.reset();

  EXPECT_TRUE(owned.expired());
}

class Watched : public SupportsWeakPtr<Watched> {};

TEST(WeakPointers, EndWithTheirObjectWhateverBecomesOfItsCopies) {
  EXPECT_EQ(WeakPtr<Watched>().Get(), nullptr);

  auto original = std::make_unique<Watched>();
  const WeakPtr<Watched> weak = original->AsWeakPtr();
  Watched copy = *original;
  const WeakPtr<Watched> toCopy = copy.AsWeakPtr();
  copy = *original;
  EXPECT_EQ(weak.Get(), original.get());

  original.reset();
  EXPECT_EQ(WeakPtr<Watched>(weak).Get(), nullptr);
  EXPECT_EQ(toCopy.Get(), &copy);
}

TEST(WeakPointers, FirstOnesOfAnObjectMayBeTakenOnTwoThreads) {
  std::vector<std::unique_ptr<Watched>> objects(2000);
  std::array<std::vector<WeakPtr<Watched>>, 2> taken;

  for (auto& object : objects) object = std::make_unique<Watched>();
  {
    Testing::Gate both(2);
    const auto take = [&](std::vector<WeakPtr<Watched>>& into) {
      both.ArriveAndWait();
      for (auto& object : objects) into.push_back(object->AsWeakPtr());
    };
    const std::jthread first(take, std::ref(taken[0]));
    const std::jthread second(take, std::ref(taken[1]));
  }

  EXPECT_TRUE(std::ranges::all_of(taken[0], &WeakPtr<Watched>::IsValid));

  objects.clear();

  for (const auto& each : taken) {
    EXPECT_TRUE(std::ranges::none_of(each, &WeakPtr<Watched>::IsValid));
  }
}

TEST(Guids, AreOrderedByTheirBytesInMemory) {
  using Bytes = std::array<std::uint8_t, 16>;
  const auto last = std::bit_cast<Guid>(Bytes{0, 0, 1});
  const auto middle = std::bit_cast<Guid>(Bytes{0, 0, 0, 1});
  const auto first = std::bit_cast<Guid>(Bytes{0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF});
  EXPECT_TRUE(first < middle && middle < last && first != middle && first == Guid(first));
}

std::string logged;

TEST(LogMessages, GoToTheSinkWhenTheyEnd) {
  LogMessage() << L"unheard";
  LogMessage::SetSink([](const VtrString& text) { logged += text.ToUtf8() + ";"; });
  LogMessage() << L"took " << 5 << " ms for " << VtrString(L"Größe");

  EXPECT_NE(LogMessage::SetSink([](const VtrString&) { throw std::logic_error("sink"); }), nullptr);

  LogMessage() << L"a sink that throws does no harm";
  LogMessage::SetSink(nullptr);
  EXPECT_EQ(logged, "took 5 ms for Größe;");
}

TEST(ThreadLocks, WritersExcludeEverybodyWhereReadersHoldTogether) {
  ThreadLock lock;
  Testing::Gate all(4);
  std::array<int, 2> counts{};
  std::atomic<int> torn = 0;
  const auto work = [&] {
    for (int round = 0; round < 2000; ++round) {
      {
        const WriteLock guard(lock);
        for (int& count : counts) ++count;
      }
      const ReadLock guard(lock);
      torn += counts[0] != counts[1] ? 1 : 0;
    }
    all.ArriveAndWait();
    const ReadLock guard(lock);
    all.ArriveAndWait();
  };

  {
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) threads.emplace_back(work);
  }
  EXPECT_EQ(counts, (std::array<int, 2>{8000, 8000}));
  EXPECT_EQ(torn, 0);
}

}  // namespace
}  // namespace DataBinding

#include "DataBinding/foundation/Event.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/foundation/Subscription.h"

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
  EXPECT_EQ(log, "ab");
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
  EXPECT_EQ(subscription, nullptr);
}

class Events : public ::testing::Test {
 protected:
  /// Subscribes a listener that notes its letter and the value, and then acts.
  void Listen(char letter, const std::function<void()>& act = nullptr) {
    subscriptions.push_back(event->Subscribe([this, letter, act](const int& value) {
      log += letter + std::to_string(value);
      if (act) act();
    }));
  }
  std::string Raise(int value) {
    log.clear();
    event->Raise(value);
    return log;
  }

  std::unique_ptr<Event<void(int)>> event = std::make_unique<Event<void(int)>>();
  std::vector<Subscription> subscriptions;
  std::string log;
};

TEST_F(Events, ListenerCancelledDuringARaiseIsNotReachedAndANewOneWaits) {
  bool first = true;
  Listen('a', [&] {
    if (!std::exchange(first, false)) return;
    subscriptions[0].Cancel();  // itself
    subscriptions[1].Cancel();
    Listen('d');
  });
  Listen('b');
  Listen('c');
  EXPECT_EQ(Raise(1), "a1c1");
  EXPECT_EQ(Raise(2), "c2d2");
}

TEST_F(Events, MayBeRaisedAndDestroyedWhileTheyRun) {
  Listen('a', [&] {
    if (log.size() == 2) event->Raise(2);
  });
  Listen('b', [&] { event.reset(); });
  Listen('c');
  event->Raise(1);
  EXPECT_EQ(log, "a1a2b2");
  subscriptions.clear();
}

TEST_F(Events, ExceptionLeavesTheRaiseAndHarmsNoLaterOne) {
  Listen('a', [&] {
    if (log != "a2") throw std::runtime_error("listener");
  });
  Listen('b');
  EXPECT_THROW(event->Raise(1), std::runtime_error);
  EXPECT_EQ(log, "a1");
  EXPECT_EQ(Raise(2), "a2b2");
  int failures = 0;
  event->RaiseEach([&] { ++failures; }, 3);
  EXPECT_EQ(log, "a2b2a3b3");
  EXPECT_EQ(failures, 1);
}

TEST_F(Events, SkipNullAndForeignMementos) {
  subscriptions.push_back(event->Subscribe(RepeatingCallback<void(int)>()));
  const RepeatingCallback<void()> foreign = [this] { log += '!'; };
  subscriptions.push_back(event->Subscribe(foreign.GetMemento()));
  Listen('a');
  EXPECT_EQ(Raise(1), "a1");
}

}  // namespace
}  // namespace DataBinding

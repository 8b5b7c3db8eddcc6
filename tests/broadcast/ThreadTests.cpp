// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "../support/Gate.h"
#include "Notifier.h"

namespace DataBinding {
namespace {

template <class Work>
void OnThreads(int count, Work work) {
  Testing::Gate start(count);
  std::vector<std::jthread> threads;
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      start.ArriveAndWait();
      work(i);
    });
  }
}

TEST(BroadcasterThreads, FirstUsesOnSeveralThreadsShareOneRegistry) {
  for (int round = 0; round < 500; ++round) {
    Notifier notifier;
    std::array<Subscription, 3> subscriptions;
    OnThreads(4, [&](int thread) {
      if (thread == 3) return notifier.UpdateListeners(L"A");
      subscriptions[static_cast<std::size_t>(thread)] = notifier.Listen([] {});
    });
    ASSERT_EQ(notifier.GetNumRegistered(L"A"), 3u);
  }
}

TEST(BroadcasterThreads, FourThreadsMayUseOneBroadcasterAtOnce) {
  Notifier notifier;
  const std::array<VtrString, 2> names{L"A", L"B"};
  std::atomic<int> keptRuns{0};
  std::atomic<int> released{0};
  const auto kept = notifier.Listen([&] { ++keptRuns; });
  const auto any = notifier.RegisterAny([&](const VtrString& name) { keptRuns += name == L"A"; });

  OnThreads(4, [&](int thread) {
    std::vector<Subscription> own;
    for (int i = 0; i < 2000; ++i) {
      const VtrString& name = names[static_cast<std::size_t>(i + thread) % 2];
      const std::shared_ptr<int> held(new int(i), [&](const int* p) { delete p, ++released; });
      const auto use = [held] { EXPECT_GE(*held, 0); };
      own.push_back(i % 4 == 0 ? notifier.RegisterAny([use](auto&) { use(); })
                               : notifier.Register(use, name));
      if (i % 3 == 0) notifier.UpdateListeners(L"A");
      if (own.size() > 8) own.erase(own.begin() + i % 8);
      EXPECT_GE(notifier.GetNumRegistered(L"A"), 1u);
    }
  });

  EXPECT_EQ(notifier.GetNumRegistered(L"A"), 1u);
  EXPECT_EQ(notifier.GetRegisteredProperties(), std::vector<VtrString>{L"A"});
  EXPECT_EQ(keptRuns, 2 * 4 * 667);
  EXPECT_EQ(released, 4 * 2000);
}

TEST(BroadcasterThreads, CancellingMayRaceWithTheEndOfTheBroadcaster) {
  for (int round = 0; round < 300; ++round) {
    auto notifier = std::make_unique<Notifier>();
    std::array<Subscription, 3> subscriptions;
    for (auto& each : subscriptions) each = notifier->Listen([] {});
    subscriptions[0] = notifier->RegisterAny([](const VtrString&) {});
    OnThreads(4, [&](int thread) {
      if (thread == 3) return notifier.reset();
      subscriptions[static_cast<std::size_t>(thread)].Cancel();
    });
  }
}

}  // namespace
}  // namespace DataBinding

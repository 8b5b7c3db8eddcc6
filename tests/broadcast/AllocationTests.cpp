// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include <gtest/gtest.h>

#include "../support/Allocations.h"
#include "Notifier.h"

namespace DataBinding {
namespace {

template <class Action>
std::int64_t AllocationsOf(Action action) {
  const std::int64_t before = Testing::Allocations();
  action();
  return Testing::Allocations() - before;
}

TEST(BroadcasterMemory, OneThatNobodyListensToCostsTwoPointers) {
  const VtrString name = L"A";

  EXPECT_EQ(sizeof(IBroadcaster), 2 * sizeof(void*));
  EXPECT_EQ(AllocationsOf([&] {
              const IBroadcaster& unused = Notifier();
              EXPECT_FALSE(unused.AreListenersAvailable(name));
              EXPECT_TRUE(unused.GetRegisteredProperties().empty());
            }),
            0);
}

TEST(BroadcasterMemory, AnnouncingAllocatesNothingNorDoesCancelling) {
  Notifier notifier;
  const VtrString name = L"A";
  int runs = 0;
  Subscription self;
  auto cancelled = notifier.Register([&runs] { ++runs; }, name);
  self = notifier.Register([&] { self.Cancel(); }, name);
  const auto kept = notifier.Register([&runs] { ++runs; }, name);

  notifier.UpdateListeners(L"first use on this thread");

  EXPECT_EQ(AllocationsOf([&] {
              notifier.UpdateListeners(name);
              cancelled.Cancel();
              notifier.UpdateListeners(name);
            }),
            0);
  EXPECT_EQ(runs, 3);
}

TEST(BroadcasterMemory, ThreadsThatEndLeaveNothingBehind) {
  Notifier notifier;
  const VtrString name = L"A";
  std::int64_t allocations = 0;
  const auto listener = notifier.Register([] {}, name);

  for (int i = 0; i < 40; ++i) {
    std::jthread([&] { allocations += AllocationsOf([&] { notifier.UpdateListeners(name); }); });
  }

  EXPECT_EQ(allocations, 0);
}

}  // namespace
}  // namespace DataBinding

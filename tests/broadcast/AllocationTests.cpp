#include <atomic>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "Notifier.h"

namespace {
std::atomic<int> allocations{0};
}  // namespace

// Every allocation of this executable and of the library is counted.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace DataBinding {
namespace {

template <class Action>
int AllocationsOf(Action action) {
  const int before = allocations;
  action();
  return allocations - before;
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

TEST(BroadcasterMemory, AnnouncingAndCancellingAllocateNothing) {
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

}  // namespace
}  // namespace DataBinding

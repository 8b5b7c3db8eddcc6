#include "DataBinding/foundation/Callback.h"

#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/Delegate.h"
#include "DataBinding/foundation/SafeFunction.h"
#include "DataBinding/foundation/String.h"

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

class Counter : public SupportsWeakPtr<Counter> {
 public:
  int Add(int first, int second) { return total += first * second; }
  std::unique_ptr<int> Take(std::unique_ptr<int>& kept) { return std::move(kept); }

  int total = 0;
};

TEST(Callbacks, AllocateOnceWhenMadeAndNeverWhenCopied) {
  RepeatingCallback<int()> callback;
  const VtrString text = L"A name that is too long for a small buffer";
  EXPECT_EQ(AllocationsOf([&] { callback = [text, a = 1L, b = 2L] { return a < b ? 3 : 0; }; }), 1);
  EXPECT_EQ(AllocationsOf([&] {
              const RepeatingCallback<int()> copy = callback;
              OneShotCallback<int()> once = copy;
              EXPECT_EQ(copy() + once(), 6);
              VtrString name = text;
              const VtrString moved = std::move(name);
              name = moved.Mid(0);
              EXPECT_GT(name.CompareNoCase(L"a NAME"), 0);
              basic_safe_function<int()> small = [&name] { return name.GetLength(); };
              EXPECT_EQ(small(), text.GetLength());
            }),
            0);
}

TEST(Callbacks, TakeAnySignatureAndMoveOnlyCallablesAndArguments) {
  const RepeatingCallback<std::string(std::unique_ptr<int>, int&)> callback =
      [own = std::make_unique<int>(1)](std::unique_ptr<int> given, int& out) {
        return std::to_string(out = *own + *given);
      };
  int out = 0;
  EXPECT_EQ(callback(std::make_unique<int>(2), out), "3");
  EXPECT_EQ(out, 3);
  OneShotCallback<std::unique_ptr<int>()> give = [own = std::make_unique<int>(4)]() mutable {
    return std::move(own);
  };
  EXPECT_EQ(*give(), 4);
  Counter counter;
  const RepeatingCallback<int&(Counter&)> member = &Counter::total;
  EXPECT_EQ(&member(counter), &counter.total);
}

TEST(Callbacks, NullOnesDoNothingAndGiveAnEmptyResult) {
  EXPECT_EQ(RepeatingCallback<int(int)>()(1), 0);
  EXPECT_EQ(OneShotCallback<std::string()>(nullptr)(), "");
  EXPECT_THROW(RepeatingCallback<const int&()>()(), std::bad_function_call);
  void (*const noFunction)() = nullptr;
  EXPECT_FALSE(RepeatingCallback<void()>(noFunction));
  const OneShotCallback<void()> none = std::function<void()>();
  EXPECT_TRUE(none.IsCancelled());
  EXPECT_FALSE(none || none.MaybeValid());
  EXPECT_EQ(none.polymorphic_invoke(), nullptr);
}

TEST(Callbacks, OneThatDestroysItselfKeepsItsCapturesUntilItReturns) {
  const auto witness = std::make_shared<int>(7);
  std::optional<RepeatingCallback<int()>> callback;
  callback = [&callback, witness] {
    callback.reset();
    return *witness + static_cast<int>(witness.use_count());
  };
  EXPECT_EQ((*callback)(), 9);
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(Callbacks, OneShotRunsOnceAndLetsItsCallableGoEvenWhenItThrows) {
  const auto witness = std::make_shared<int>(0);
  OneShotCallback<void()> once;
  for (const bool fails : {false, true}) {
    once = [&once, witness, fails] {
      ++*witness;
      once();
      if (fails) throw std::runtime_error("listener");
    };
    if (fails) {
      EXPECT_THROW(once(), std::runtime_error);
    } else {
      once();
    }
    EXPECT_EQ(witness.use_count(), 1);
    once();
  }
  EXPECT_EQ(*witness, 2);
}

TEST(Callbacks, WeaklyBoundOnesAreSkippedOnceTheirObjectIsGone) {
  auto counter = std::make_unique<Counter>();
  const RepeatingCallback<int(int)> add = BindWeak(counter->AsWeakPtr(), &Counter::Add, 10);
  OneShotCallback<std::unique_ptr<int>()> take =
      BindWeak(counter->AsWeakPtr(), &Counter::Take, std::make_unique<int>(5));
  EXPECT_EQ(add(2), 20);
  EXPECT_EQ(add(3), 50);
  EXPECT_EQ(*take(), 5);
  EXPECT_TRUE(!add.IsCancelled() && add.MaybeValid());
  counter.reset();
  EXPECT_EQ(add(4), 0);
  EXPECT_TRUE(add.IsCancelled() && !add.MaybeValid());
}

TEST(Callbacks, CopiesAndMementosShareOneCallable) {
  RepeatingCallback<int()> count = [calls = 0]() mutable { return ++calls; };
  RepeatingCallback<int()> same;
  same.SetMemento(count.GetMemento());
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(same(), 2);
  RepeatingCallback<long()> other = [] { return 5L; };
  other.SetMemento(count.GetMemento());
  EXPECT_FALSE(other);
  same.SetMemento(RepeatingCallbackMemento());
  EXPECT_FALSE(same);
}

template <std::size_t words>
void MoveAndCallSafeFunction() {
  const auto witness = std::make_shared<int>(1);
  using Function = basic_safe_function<int(std::unique_ptr<int>), words>;
  Function first = [witness](std::unique_ptr<int> value) { return *value + *witness; };
  Function second = std::move(first);
  EXPECT_EQ(first(std::make_unique<int>(1)), 0);
  EXPECT_EQ(second(std::make_unique<int>(1)), 2);
  first = std::move(second);
  auto& self = first;
  first = std::move(self);
  EXPECT_EQ(first(std::make_unique<int>(2)), 3);
  first = nullptr;
  EXPECT_FALSE(first);
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(SafeFunctions, MoveTheirCallableAndAreSafeWhenEmpty) {
  MoveAndCallSafeFunction<1>();  // on the heap
  MoveAndCallSafeFunction<2>();  // inside
}

TEST(Delegates, CallTheirContextAndAreSafeWhenEmpty) {
  Counter counter;
  const auto add = Delegate<int(int, int)>::To<&Counter::Add>(counter);
  const auto copy = add;
  EXPECT_EQ(copy(2, 3), 6);
  EXPECT_EQ(counter.total, 6);
  EXPECT_EQ((Delegate<int(int, int)>()(2, 3)), 0);
}

}  // namespace
}  // namespace DataBinding

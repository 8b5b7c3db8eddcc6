// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/Callback.h"

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "../support/Allocations.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/Delegate.h"
#include "DataBinding/foundation/SafeFunction.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {
namespace {

class Counter : public SupportsWeakPtr<Counter> {
 public:
  int Add(int first, int second) { return total += first * second; }
  std::unique_ptr<int> Take(std::unique_ptr<int>& kept) { return std::move(kept); }

  int total = 0;
};

TEST(Callbacks, AllocateOnlyWhenTheyAreMade) {
  const VtrString text = L"A name that is too long for a small buffer";
  RepeatingCallback<int()> callback;
  auto before = Testing::Allocations();
  callback = [text, a = 1L, b = 2L] { return a < b ? 3 : 0; };
  EXPECT_EQ(Testing::Allocations() - before, 1);

  before = Testing::Allocations();
  const RepeatingCallback<int()> copy = callback;
  OneShotCallback<int()> once = copy;
  basic_safe_function<int()> small = [&text] { return text.CompareNoCase(L"a NAME"); };
  EXPECT_EQ(copy() + once() + small(), 7);
  EXPECT_EQ(Testing::Allocations() - before, 0);
}

TEST(Callbacks, TakeWhatCanOnlyBeMoved) {
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
}

TEST(Callbacks, TakeMembersOfAnObject) {
  Counter counter;

  EXPECT_EQ(&RepeatingCallback<int&(Counter&)>(&Counter::total)(counter), &counter.total);

  const auto add = Delegate<int(int, int)>::To<&Counter::Add>(counter);
  EXPECT_EQ(Delegate(add)(2, 3), 6);

  Delegate<void(int, int)>::To<&Counter::Add>(counter)(3, 4);
  EXPECT_EQ(counter.total, 18);
}

TEST(Callbacks, NullOnesGiveAnEmptyResult) {
  EXPECT_EQ(RepeatingCallback<int(int)>()(1), 0);
  EXPECT_EQ(OneShotCallback<std::string()>(nullptr)(), "");
  EXPECT_THROW(RepeatingCallback<const int&()>()(), std::bad_function_call);

  void (*const noFunction)() = nullptr;
  EXPECT_FALSE(RepeatingCallback<void()>(noFunction));

  const OneShotCallback<void()> none = std::function<void()>();
  EXPECT_TRUE(none.IsCancelled() && !none.MaybeValid() && !none.polymorphic_invoke());
  EXPECT_EQ((Delegate<int(int, int)>()(2, 3)), 0);
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

TEST(Callbacks, OneShotLetsItsCallableGoEvenWhenItThrows) {
  const auto witness = std::make_shared<int>(0);
  OneShotCallback<void()> once = [&once, witness] {
    ++*witness;
    once();
    throw std::runtime_error("listener");
  };

  EXPECT_THROW(once(), std::runtime_error);
  EXPECT_EQ(witness.use_count(), 1);

  once();
  EXPECT_EQ(*witness, 1);
}

/// Binds to what `weakly` makes of an object, and asks before and after the object's end.
template <class Pointer, class Weakly>
void EndBoundObject(Pointer counter, Weakly weakly) {
  const RepeatingCallback<int(int)> add = BindWeak(weakly(counter), &Counter::Add, 10);
  OneShotCallback<std::unique_ptr<int>()> take =
      BindWeak(weakly(counter), &Counter::Take, std::make_unique<int>(5));
  EXPECT_EQ(add(2) + add(3), 70);
  EXPECT_EQ(*take(), 5);
  EXPECT_TRUE(!add.IsCancelled() && add.MaybeValid());
  counter.reset();
  EXPECT_EQ(add(4), 0);
  EXPECT_TRUE(add.IsCancelled() && !add.MaybeValid());
}

TEST(Callbacks, WeaklyBoundOnesAreSkippedOnceTheirObjectIsGone) {
  EndBoundObject(std::make_unique<Counter>(), [](auto& counter) { return counter->AsWeakPtr(); });
  EndBoundObject(std::make_shared<Counter>(), [](auto& counter) { return counter; });
  EndBoundObject(std::make_shared<Counter>(), [](auto& counter) { return std::weak_ptr(counter); });
}

TEST(Callbacks, WeaklyBoundOnesKeepASharedObjectUntilTheyReturn) {
  auto counter = std::make_shared<Counter>();
  const RepeatingCallback<int()> end = BindWeak(counter, [&](Counter& held) {
    counter.reset();
    return held.Add(2, 3);
  });

  EXPECT_EQ(end(), 6);
  EXPECT_TRUE(end.IsCancelled());
}

TEST(Callbacks, MementosShareACallableOfTheirSignature) {
  RepeatingCallback<int()> count = [calls = 0]() mutable { return ++calls; };
  RepeatingCallback<int()> same;

  same.SetMemento(count.GetMemento());

  EXPECT_EQ(count(), 1);
  EXPECT_EQ(same(), 2);

  RepeatingCallback<long()> other = [] { return 5L; };
  other.SetMemento(count.GetMemento());
  same.SetMemento(RepeatingCallbackMemento());
  EXPECT_FALSE(other || same);
}

template <std::size_t Words>
void MoveAndCallSafeFunction() {
  const auto witness = std::make_shared<int>(1);
  using Function = basic_safe_function<int(std::unique_ptr<int>), Words>;
  Function first = [witness](std::unique_ptr<int> value) { return *value + *witness; };
  Function second = std::move(first);
  EXPECT_EQ(first(std::make_unique<int>(1)), 0);
  EXPECT_EQ(second(std::make_unique<int>(1)), 2);
  auto& self = second;
  second = std::move(self);
  first = std::move(second);
  EXPECT_EQ(first(std::make_unique<int>(2)), 3);
  first = nullptr;
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(SafeFunctions, MoveTheirCallableOutOfASafelyEmptyOne) {
  MoveAndCallSafeFunction<1>();  // on the heap
  MoveAndCallSafeFunction<2>();  // inside
}

}  // namespace
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Runs scenes again and again, each time with another one of their allocations failing.
///
/// A scene is made of steps. The step in which the allocation fails throws std::bad_alloc, or says
/// by false that it did nothing, and is done again: the scene then goes on, and is checked, as if
/// nothing had happened, and nothing of it is left.
#pragma once

#include <new>
#include <type_traits>

#include <gtest/gtest.h>

#include "../support/Allocations.h"

namespace DataBinding::Testing {

class Attempts {
 public:
  template <class Scene>
  static void Of(Scene scene) {
    Attempts whole(0);
    scene(whole);  // makes what is made once in a process
    bool isReached = true;
    for (std::int64_t number = 1; isReached && !testing::Test::HasFailure(); ++number) {
      SCOPED_TRACE(number);
      const auto before = LiveAllocations();
      Attempts attempts(number);
      scene(attempts);
      EXPECT_EQ(LiveAllocations(), before);
      isReached = attempts.hasFailed;
    }
  }
  template <class Step>
  void operator()(Step step) {
    if (IsDone(step)) return;
    EXPECT_TRUE(std::exchange(isFailing, false)) << "the step does nothing";
    EXPECT_TRUE(IsDone(step)) << "the step cannot be done again";
  }

 private:
  explicit Attempts(std::int64_t number) : left(number) {}

  template <class Step>
  bool IsDone(Step step) {
    const auto before = Allocations();
    const FailingAllocation failing(left);
    bool isDone = false;
    try {
      if constexpr (std::is_void_v<std::invoke_result_t<Step>>) {
        step();
        isDone = true;
      } else {
        isDone = step();
      }
    } catch (const std::bad_alloc&) {
    }
    isFailing = FailingAllocation::HasFailed();
    hasFailed = hasFailed || isFailing;
    left = hasFailed ? 0 : left - (Allocations() - before);
    return isDone;
  }

  std::int64_t left;
  bool isFailing = false;
  bool hasFailed = false;
};

}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
// A RowFunction calls an application's function many times in a row. A callback counts its users at
// each call; here its owner keeps it meanwhile.
#pragma once

#include <exception>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/lists/details/ListCore.h"

namespace DataBinding::details {

template <class Signature>
class RowFunction;

template <class Result, class... Args>
class RowFunction<Result(Args...)> {
 public:
  explicit RowFunction(const RepeatingCallback<Result(Args...)>& function) noexcept
      : state(function.GetBindState()) {
    if (state != nullptr) run = reinterpret_cast<Run>(state->Invoke());
  }
  /// Calls the function, which may throw. A null one answers false or 0.
  Result operator()(Args... args) const { return run != nullptr ? run(state, args...) : Result(); }

 private:
  using Run = typename VtrUtils::details::Invoker<Result(Args...)>::Function;

  const VtrUtils::details::BindStateBase* state;
  Run run = nullptr;
};

/// Tells the failure handler of the exception that is being handled, under the name of a list.
inline void ReportOf(const ListNode& list) noexcept {
  ReportFailure(list.ListName(), std::current_exception());
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// CallOnce registers a callback that is called once at most, and whose registration ends after the
/// call. RegisterOnce and its like use it.
///
/// It works with everything that gives the library's own subscriptions. The callback may be called
/// on several threads at once, nested, and even before the registration has returned: only the
/// first call is made. The callable ends before the registration does, so that a thread which waits
/// for the end of the registration waits for both.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "DataBinding/foundation/Subscription.h"

namespace VtrUtils::details {

template <class... Args>
class OnceState {
 public:
  explicit OnceState(OneShotCallback<void(Args...)> once) noexcept : callback(std::move(once)) {}

  void Call(Args... args) {
    if (isTaken.exchange(true)) return;
    struct Finish {
      OnceState& self;
      ~Finish() { self.HaveHappened(Called); }
    } finish{*this};
    callback(std::forward<Args>(args)...);
  }
  void Follow(const Subscription& subscription) {
    registration = subscription.GetRegistration();
    HaveHappened(Registered);
  }

 private:
  enum : unsigned { Called = 1, Registered = 2 };

  /// Ends the registration once the callback has been called and the registration is known. Each
  /// may happen first; the thread on which the second one happens ends it.
  void HaveHappened(unsigned event) {
    if ((events.fetch_or(event) | event) != (Called | Registered)) return;
    registration.Request(RegistrationRequest::End);
  }

  OneShotCallback<void(Args...)> callback;
  SharedRegistration registration;
  std::atomic<bool> isTaken{false};
  std::atomic<unsigned> events{0};
};

/// Wraps the callback, registers it by `registerCallback`, and returns the Subscription that this
/// gives.
template <class... Args, class Register>
Subscription CallOnce(OneShotCallback<void(Args...)> callback, Register registerCallback) {
  const auto once = std::make_shared<OnceState<Args...>>(std::move(callback));
  Subscription subscription =
      registerCallback([once](Args... args) { once->Call(std::forward<Args>(args)...); });
  once->Follow(subscription);
  return subscription;
}

}  // namespace VtrUtils::details

namespace DataBinding::details {
using VtrUtils::details::CallOnce;
}  // namespace DataBinding::details

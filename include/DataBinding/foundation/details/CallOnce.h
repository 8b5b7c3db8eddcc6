// SPDX-License-Identifier: Apache-2.0
/// A callback that is called once at most and ends its registration when it has been: what
/// RegisterOnce and its like are made of.
///
/// It may be registered with whatever gives the library's own subscriptions and may be called on
/// several threads at once, nested and even before the registration has returned: the first call
/// counts. The callable ends before the registration does, so that who waits for the registration
/// waits for both.
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
    registration = comlike_ptr<BindStateBase>::Share(subscription.GetRegistration());
    HaveHappened(Registered);
  }

 private:
  enum : unsigned { Called = 1, Registered = 2 };

  /// Ends the registration when both have happened; on whichever thread the second does.
  void HaveHappened(unsigned event) {
    if ((events.fetch_or(event) | event) != (Called | Registered)) return;
    if (registration) registration->Request(RegistrationRequest::End);
  }

  OneShotCallback<void(Args...)> callback;
  comlike_ptr<BindStateBase> registration;
  std::atomic<bool> isTaken{false};
  std::atomic<unsigned> events{0};
};

/// Registers by a function that takes a callback and gives its Subscription, which is returned.
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

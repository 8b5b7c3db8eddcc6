// SPDX-License-Identifier: Apache-2.0
/// A registration's other end: while it lives the registration stands.
///
/// Dropping it, assigning another over it or calling Cancel ends the registration, once. It may
/// outlive what it was registered with. Cancel may run inside the registered callback. On which
/// thread depends on what was registered: any thread for callbacks of properties, events and binds,
/// that of the tree for destruction handlers, the delivering one for hooks. One Subscription object
/// is not to be used by two threads at once. The callback that ends the registration must not
/// throw.
///
/// Cancel waits for nobody: an announcement that is under way still runs the callback of a property
/// once, on this thread or another. CancelAndWait makes an end of that, so that what the callback
/// uses may be freed when it returns. PauseListening stops a registration for a scope only.
#pragma once

#include <utility>

#include "DataBinding/foundation/Callback.h"

namespace VtrUtils {

class [[nodiscard]] Subscription {
 public:
  Subscription() noexcept = default;
  /// Takes what ends the registration.
  explicit Subscription(OneShotCallback<void()> end) noexcept : unsubscribe(std::move(end)) {}
  /// Takes the registration over and leaves the other inert.
  Subscription(Subscription&&) noexcept = default;
  /// Takes the other's registration over, then ends the one that was held.
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      auto previous = std::exchange(unsubscribe, std::move(other.unsubscribe));
      if (previous) previous();
    }
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { Cancel(); }

  /// Ends the registration; does nothing on an inert subscription.
  void Cancel() {
    if (unsubscribe) unsubscribe();
  }
  /// Ends the registration and returns when no other thread is inside its callback. From then on
  /// nobody calls it, neither an announcement that is under way; only the calls in which this
  /// thread is itself go on.
  ///
  /// The caller holds no lock that the callback takes, and the callback does not wait for the
  /// caller; for an event or a CallbackList that is true of all its listeners, whose walk is waited
  /// for. On an inert subscription, with one of a hook, and with a callback of one's own that
  /// ends something, it does what Cancel does.
  void CancelAndWait() {
    if (!unsubscribe) return;
    auto ending = std::move(unsubscribe);
    ending.GetBindState()->Request(details::RegistrationRequest::EndAndWait);
    ending();
  }
  /// True until cancelled; whether the other side still lives is not asked.
  explicit operator bool() const noexcept { return static_cast<bool>(unsubscribe); }

  /// The state that ends the registration and knows requests too. Null on an inert subscription,
  /// and where a callback of one's own ends something: sharing that would put its end off.
  [[nodiscard]] details::BindStateBase* GetRegistration() const noexcept {
    auto* const state = unsubscribe.GetBindState();
    return state != nullptr && state->IsRegistration() ? state : nullptr;
  }

 private:
  OneShotCallback<void()> unsubscribe;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Subscription;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A Subscription stands for the registration of a callback, and ends it.
///
/// The registration lasts until the Subscription is destroyed or cancelled, or until another one is
/// assigned to it. A Subscription may outlive the object with which the callback is registered. It
/// may be cancelled inside the callback.
///
/// Which thread may cancel depends on what was registered: any thread for callbacks of properties,
/// events and binds, the thread of the tree for destruction handlers, the delivering thread for
/// hooks. One Subscription object must not be used by two threads at once. The callback that ends
/// the registration must not throw.
///
/// Cancel does not wait: when the announcement of a property is under way, on this thread or
/// another, it still runs the callback once. CancelAndWait ensures that it does not, so that what
/// the callback uses may be freed afterwards. PauseListening stops a registration for a while.
#pragma once

#include <utility>

#include "DataBinding/foundation/Callback.h"

namespace VtrUtils {

class [[nodiscard]] Subscription {
 public:
  Subscription() noexcept = default;
  /// Takes the callback that ends the registration.
  explicit Subscription(OneShotCallback<void()> end) noexcept : unsubscribe(std::move(end)) {}
  /// Takes the registration over and leaves the other Subscription inert.
  Subscription(Subscription&&) noexcept = default;
  /// Takes the other's registration over, then ends the registration that this object had.
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

  /// Ends the registration. Does nothing on an inert subscription.
  void Cancel() {
    if (unsubscribe) unsubscribe();
  }
  /// Ends the registration and returns when no other thread is inside the callback. After that the
  /// callback is not called any more, not even by an announcement that is under way. Only calls
  /// that this thread itself is in go on.
  ///
  /// The caller must not hold a lock that the callback takes, and the callback must not wait for
  /// the caller. For an event or a CallbackList this holds for all its listeners, since the whole
  /// walk is waited for. This does the same as Cancel if the subscription is inert, belongs to a
  /// hook, or was made with a callback of the user's own.
  void CancelAndWait() {
    if (!unsubscribe) return;
    auto ending = std::move(unsubscribe);
    ending.GetBindState()->Request(details::RegistrationRequest::EndAndWait);
    ending();
  }
  /// Returns true until the subscription is cancelled, even if the object with which the callback
  /// was registered has ended.
  explicit operator bool() const noexcept { return static_cast<bool>(unsubscribe); }

  /// Returns the state that ends the registration and can also pause it. The result is null if the
  /// subscription is inert, or was made with a callback of the user's own, whose callable would be
  /// kept alive too long if its state were shared.
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

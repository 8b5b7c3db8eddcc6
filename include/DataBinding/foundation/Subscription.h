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

namespace details {

/// A SharedRegistration can make requests to a registration, as its Subscription can, and does not
/// end it. It keeps the state of the registration.
class SharedRegistration {
 public:
  SharedRegistration() noexcept = default;
  SharedRegistration(comlike_ptr<BindStateBase> shared, const RegistrationKey& which) noexcept
      : state(std::move(shared)), key(which) {}

  void Request(RegistrationRequest request) const {
    if (state) state->Request(request, key);
  }

 private:
  comlike_ptr<BindStateBase> state;
  RegistrationKey key;
};

}  // namespace details

class [[nodiscard]] Subscription {
 public:
  Subscription() noexcept = default;
  /// Takes the callback that ends the registration.
  explicit Subscription(OneShotCallback<void()> end) noexcept
      : state(end.TakeBindState().Detach()) {}
  /// Stands for one of the many registrations of a state. The state counts such Subscriptions
  /// itself: each makes the request Leave in the end.
  Subscription(details::BindStateBase& ofMany, const details::RegistrationKey& which) noexcept
      : state(&ofMany), key(which) {}
  /// Takes the registration over and leaves the other Subscription inert.
  Subscription(Subscription&& other) noexcept
      : state(std::exchange(other.state, nullptr)), key(other.key) {}
  /// Takes the other's registration over, then ends the registration that this object had.
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      const Subscription previous(std::move(*this));
      state = std::exchange(other.state, nullptr);
      key = other.key;
    }
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { Cancel(); }

  /// Ends the registration. Does nothing on an inert subscription.
  void Cancel() {
    auto* const ended = std::exchange(state, nullptr);
    if (ended == nullptr) return;
    if (key.place != nullptr) return ended->Request(details::RegistrationRequest::Leave, key);
    OneShotCallback<void()>(comlike_ptr<details::BindStateBase>(ended))();
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
    if (state == nullptr) return;
    const Subscription ending(std::move(*this));
    ending.state->Request(details::RegistrationRequest::EndAndWait, ending.key);
  }
  /// Returns true until the subscription is cancelled, even if the object with which the callback
  /// was registered has ended.
  explicit operator bool() const noexcept { return state != nullptr; }

  /// Returns a share in the registration. It does nothing if the subscription is inert, or was made
  /// with a callback of the user's own, whose callable would be kept alive too long if its state
  /// were shared.
  [[nodiscard]] details::SharedRegistration GetRegistration() const noexcept {
    if (state == nullptr || !state->IsRegistration()) return {};
    return {comlike_ptr<details::BindStateBase>::Share(state), key};
  }

 private:
  /// Is owned by one reference, unless there is a key.
  details::BindStateBase* state = nullptr;
  /// Says which registration of the state this is, if the state has many.
  details::RegistrationKey key;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Subscription;
}  // namespace DataBinding

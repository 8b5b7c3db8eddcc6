/// A registration's other end: while it lives the registration stands.
///
/// Dropping it, assigning another over it or calling Cancel ends the registration, once. It may
/// outlive what it was registered with. Cancel may run inside the registered callback. On which
/// thread depends on what was registered: any thread for callbacks of properties, events and binds,
/// that of the tree for destruction handlers. One Subscription object is not to be used by two
/// threads at once. The callback that ends the registration must not throw.
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
  /// True until cancelled; whether the other side still lives is not asked.
  explicit operator bool() const noexcept { return static_cast<bool>(unsubscribe); }

 private:
  OneShotCallback<void()> unsubscribe;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Subscription;
}  // namespace DataBinding

/// A delivery under way: knows whether its broadcaster was released meanwhile.
///
/// Stands on the stack of the delivering thread; scopes of one broadcaster nest.
#pragma once

#include <utility>
#include <vector>

#include "DataBinding/EventBroadcaster.h"
#include "PendingEvents.h"

namespace DataBinding::details {

class DeliveryScope {
 public:
  explicit DeliveryScope(PolicyEventBroadcaster& delivering) noexcept
      : broadcaster(&delivering), outer(std::exchange(delivering.delivery, this)) {}
  DeliveryScope(const DeliveryScope&) = delete;
  DeliveryScope& operator=(const DeliveryScope&) = delete;
  ~DeliveryScope() {
    if (broadcaster != nullptr) broadcaster->delivery = outer;
  }

  /// The innermost scope of a broadcaster that is delivering.
  [[nodiscard]] static DeliveryScope& Of(PolicyEventBroadcaster& delivering) noexcept {
    return *delivering.delivery;
  }

  /// Dispatches an event, which finds its owner here if it is to be held.
  void Dispatch(const PolicyEventBroadcaster::EventPtr& owned) {
    event = &owned;
    owned->Dispatch(*broadcaster);
  }
  /// Dispatches one after the other, until the broadcaster is released.
  void Dispatch(PendingEvents::Batch& whole) {
    batch = &whole;
    whole.Visit([this](const PolicyEventBroadcaster::EventPtr& next) {
      Dispatch(next);
      return !IsBroadcasterGone();
    });
  }
  /// Takes the events that match, and are still to come, out of the batches under way.
  template <class Matches>
  static void Drop(DeliveryScope* innermost, Matches matches) {
    std::vector<PolicyEventBroadcaster::EventPtr> dropped;
    for (auto* scope = innermost; scope != nullptr; scope = scope->outer) {
      if (scope->batch != nullptr) scope->batch->Drop(*scope->event, matches, dropped);
    }
  }
  [[nodiscard]] bool IsBroadcasterGone() const noexcept { return broadcaster == nullptr; }
  /// The owner of the event that is being dispatched.
  [[nodiscard]] const PolicyEventBroadcaster::EventPtr& Owner() const noexcept { return *event; }
  /// Tells a broadcaster's scopes, from the innermost one outward, that it ends.
  static void End(DeliveryScope* innermost) noexcept {
    for (auto* scope = innermost; scope != nullptr; scope = scope->outer) {
      scope->broadcaster = nullptr;
    }
  }

 private:
  PolicyEventBroadcaster* broadcaster;
  DeliveryScope* outer;
  const PolicyEventBroadcaster::EventPtr* event = nullptr;
  PendingEvents::Batch* batch = nullptr;
};

}  // namespace DataBinding::details

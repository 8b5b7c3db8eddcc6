// SPDX-License-Identifier: Apache-2.0
/// A DeliveryScope stands for a delivery that is under way. It tells the code that delivers whether
/// a callback has released the broadcaster.
///
/// A scope stands on the stack of the delivering thread. The scopes of one broadcaster nest and
/// form a chain, from the innermost, to which EventBroadcaster::delivery points, outward. Dropping
/// events and asking for those still to come go along this chain, because the batches under
/// delivery are known here only.
#pragma once

#include <utility>
#include <vector>

#include "DataBinding/appevents/EventBroadcaster.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/details/Cancellation.h"
#include "PendingEvents.h"

namespace DataBinding::details {

class DeliveryScope {
 public:
  explicit DeliveryScope(PolicyEventBroadcaster& delivering) noexcept
      : broadcaster(&delivering), outer(std::exchange(delivering.delivery, this)) {
    broadcaster->pendingEvents->delivering.Enter();
  }
  DeliveryScope(const DeliveryScope&) = delete;
  DeliveryScope& operator=(const DeliveryScope&) = delete;
  ~DeliveryScope() {
    if (broadcaster == nullptr) return;
    broadcaster->delivery = outer;
    broadcaster->pendingEvents->delivering.Leave();
  }

  /// The innermost scope of a broadcaster that is delivering.
  [[nodiscard]] static DeliveryScope& Of(PolicyEventBroadcaster& delivering) noexcept {
    return *delivering.delivery;
  }

  /// Dispatches one event. While that lasts, Event() gives its shared pointer, which the event
  /// needs when it is to be held.
  void Dispatch(const PolicyEventBroadcaster::EventPtr& owned) {
    const ScopedValue dispatching(event, &owned);
    owned->Dispatch(*broadcaster);
  }
  /// Dispatches the events of a batch in order, until the broadcaster is released. The scope knows
  /// the batch for that time only: when the events end afterwards, nothing looks for them here.
  void Dispatch(PendingEvents::Batch& whole) {
    const ScopedValue delivering(batch, &whole);
    while (const auto* next = whole.Next()) {
      Dispatch(next->event);
      if (IsBroadcasterGone()) return;
    }
  }
  /// Runs a step in the delivery of an event. When the step throws, the exception goes to the
  /// broadcaster, unless a callback has released it, and the answer is false.
  template <class Step>
  // NOLINTNEXTLINE(modernize-use-nodiscard): few callers go by the answer
  DATABINDING_CATCHES_CANCELLATION bool Guard(const VtrString& name, Step step) const {
    try {
      step();
      return true;
    }
    DATABINDING_PASS_CANCELLATION catch (...) {
      if (!IsBroadcasterGone()) broadcaster->ReportFailure(name);
      return false;
    }
  }
  /// Moves the events that are still to come in the batches under way, and for which
  /// matches(name, event) is true, to `dropped`.
  template <class Matches>
  static void Drop(DeliveryScope* innermost, const Matches& matches,
                   std::vector<PolicyEventBroadcaster::EventPtr>& dropped) {
    for (auto* scope = innermost; scope != nullptr; scope = scope->outer) {
      if (scope->batch != nullptr) scope->batch->Drop(*scope->event, matches, dropped);
    }
  }
  /// True when the batches under way have events still to come.
  [[nodiscard]] static bool IsAnyToCome(DeliveryScope* innermost) noexcept {
    for (auto* scope = innermost; scope != nullptr; scope = scope->outer) {
      if (scope->batch != nullptr && scope->batch->HasNext()) return true;
    }
    return false;
  }
  [[nodiscard]] bool IsBroadcasterGone() const noexcept { return broadcaster == nullptr; }
  /// The shared pointer to the event that is being dispatched.
  [[nodiscard]] const PolicyEventBroadcaster::EventPtr& Event() const noexcept { return *event; }
  /// Tells the scopes of a broadcaster, from the innermost one outward, that the broadcaster ends.
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

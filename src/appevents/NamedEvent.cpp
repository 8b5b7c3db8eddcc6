// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/details/NamedEvent.h"

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/WAppEventRegistrar.h"
#include "DeliveryScope.h"

namespace DataBinding::details {

NamedEvent::~NamedEvent() = default;

bool NamedEvent::HasListeners(const EventName& name) {
  if (WAppEventRegistrar::IsAnyWaiting()) WAppEventRegistrar::GetInstance().FlushDelayInitList();
  if (!IAppEventBroadcaster::HasInstance()) return false;
  const auto* const listeners = IAppEventBroadcaster::GetInstance().FindListeners(name);
  if (listeners == nullptr) return false;
  CallbackWalk walk(listeners->Core());
  const auto* listener = walk.Next();
  while (listener != nullptr && listener->state->IsCancelled()) listener = walk.Next();
  return listener != nullptr;
}

void NamedEvent::Dispatch(PolicyEventBroadcaster& broadcaster) {
  const VtrString& name = KnownName()->Text();
  const DeliveryScope& scope = DeliveryScope::Of(broadcaster);
  if (WAppEventRegistrar::IsAnyWaiting()) {
    scope.Guard(name, [&] { PreNotify(broadcaster); });
    if (scope.IsBroadcasterGone()) return;
  }
  const CallbackListBase* listeners = nullptr;
  bool isHeld = false;
  scope.Guard(name, [&] {
    listeners = &broadcaster.Listeners(*KnownName());
    // Only an event that is held needs to be shared.
    isHeld = broadcaster.IsDisable(name) && HoldIfDisabled(broadcaster, name, scope.Event());
  });
  if (listeners == nullptr || isHeld) return;
  CallbackWalk walk(listeners->Core());
  while (!scope.Guard(name, [&] { CallListeners(walk); }) && !walk.IsListGone()) {
  }
  if (scope.IsBroadcasterGone() || !HasHooks(broadcaster)) return;
  scope.Guard(name, [&] { NotifyHooks(broadcaster, name, BoxArguments()); });
}

}  // namespace DataBinding::details

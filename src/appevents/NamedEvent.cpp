// SPDX-License-Identifier: Apache-2.0
// The doors through which AppEvent raises, sends and subscribes, and the delivery of one event.
#include "DataBinding/appevents/details/NamedEvent.h"

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/WAppEventRegistrar.h"
#include "DeliveryScope.h"

namespace DataBinding::details {

NamedEvent::~NamedEvent() = default;

void NamedEvent::Queue(const EventName& name, Ptr&& event, bool replaceLast) {
  PolicyEventBroadcaster& broadcaster = IAppEventBroadcaster::GetInstance();
  broadcaster.QueueNamed(name, replaceLast, std::move(event));
}

void NamedEvent::Send(const Ptr& event) {
  PolicyEventBroadcaster& broadcaster = IAppEventBroadcaster::GetInstance();
  broadcaster.Deliver(event);
}

Subscription NamedEvent::Subscribe(IAppEventBroadcaster& broadcaster, const EventName& name,
                                   const RepeatingCallbackMemento& callback) {
  PolicyEventBroadcaster& events = broadcaster;
  return events.Channel(name).listeners.Add(callback);
}

bool NamedEvent::HasListeners(const EventName& name) {
  if (WAppEventRegistrar::IsAnyWaiting()) WAppEventRegistrar::GetInstance().FlushDelayInitList();
  if (!IAppEventBroadcaster::HasInstance()) return false;
  const PolicyEventBroadcaster& broadcaster = IAppEventBroadcaster::GetInstance();
  if (broadcaster.channels.size() <= name.Number()) return false;
  const auto& channel = broadcaster.channels[name.Number()];
  if (channel == nullptr) return false;
  CallbackWalk walk(channel->listeners.Core());
  const auto* listener = walk.Next();
  while (listener != nullptr && listener->state->IsCancelled()) listener = walk.Next();
  return listener != nullptr;
}

void NamedEvent::Dispatch(PolicyEventBroadcaster& broadcaster) {
  const DeliveryScope& scope = DeliveryScope::Of(broadcaster);
  if (WAppEventRegistrar::IsAnyWaiting()) {
    scope.Guard(name.Text(), [&] { broadcaster.updatePolicy.PreNotify(); });
    if (scope.IsBroadcasterGone()) return;
  }
  const EventChannel* channel = nullptr;
  bool isHeld = false;
  scope.Guard(name.Text(), [&] {
    channel = &broadcaster.Channel(name);
    isHeld = broadcaster.IsDisable(name.Text());
    if (isHeld) broadcaster.HoldEvent(name.Text(), scope.Event());
  });
  if (channel == nullptr || isHeld) return;
  CallbackWalk walk(channel->listeners.Core());
  while (!scope.Guard(name.Text(), [&] { CallListeners(walk); }) && !walk.IsListGone()) {
  }
  if (scope.IsBroadcasterGone() || !HasHooks(broadcaster)) return;
  scope.Guard(name.Text(), [&] { NotifyHooks(broadcaster, name.Text(), BoxArguments()); });
}

}  // namespace DataBinding::details

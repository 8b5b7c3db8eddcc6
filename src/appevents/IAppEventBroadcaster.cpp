// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/IAppEventBroadcaster.h"

#include <utility>

#include "DataBinding/foundation/details/VisitInOrder.h"
#include "DeliveryScope.h"

namespace DataBinding {

IAppEventBroadcaster::IAppEventBroadcaster() = default;
/// Empties the table before the hooks end, because a hook may own things whose end removes other
/// hooks.
IAppEventBroadcaster::~IAppEventBroadcaster() { const auto ended = std::exchange(eventHooks, {}); }

int IAppEventBroadcaster::RegisterEventHook(EventHook hook, const void* origin) {
  eventHooks.insert_or_assign(nextHookId, Hook{hook, origin});
  return nextHookId++;
}

bool IAppEventBroadcaster::UnregisterEventHook(int id) { return !eventHooks.extract(id).empty(); }

Subscription IAppEventBroadcaster::AddEventHook(const EventHookCallback& hook) {
  if (!hook) return {};
  Subscription added([hooks = hooksFactory.GetWeakPtr(), id = nextHookId] {
    if (hooks) hooks->UnregisterEventHook(id);
  });
  eventHooks.insert_or_assign(nextHookId, Hook{hook});
  ++nextHookId;
  return added;
}

int IAppEventBroadcaster::UnregisterEventHooks(const void* origin) {
  if (origin == nullptr) return 0;
  return static_cast<int>(std::erase_if(
      eventHooks, [origin](const auto& hook) { return hook.second.origin == origin; }));
}

bool IAppEventBroadcaster::AnyEventHooksRegistered() const { return !eventHooks.empty(); }

/// A hook may remove itself or others, or release the broadcaster. One that is added meanwhile is
/// not called yet.
void IAppEventBroadcaster::OnEventDispatched(VtrString name, const std::vector<Any>& args) {
  const details::DeliveryScope scope(*this);
  VisitInOrder(eventHooks, [&, end = nextHookId](int id, const Hook& hook) {
    if (id >= end) return false;
    scope.Guard(name, [&, call = hook.call] { call(name, args); });
    return !scope.IsBroadcasterGone();
  });
}

}  // namespace DataBinding

template <>
DataBinding::IAppEventBroadcaster&
VtrUtils::Singleton<DataBinding::IAppEventBroadcaster, 0>::GetInstance() {
  return ObtainInstance();
}

template <>
bool VtrUtils::Singleton<DataBinding::IAppEventBroadcaster, 0>::HasInstance() {
  return IsInstanceThere();
}

template <>
void VtrUtils::Singleton<DataBinding::IAppEventBroadcaster, 0>::ReleaseInstance(bool markReleased) {
  EndInstance(markReleased);
}

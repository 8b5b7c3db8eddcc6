#include "DataBinding/IAppEventBroadcaster.h"

#include "DataBinding/foundation/Cancellation.h"
#include "DeliveryScope.h"

namespace DataBinding {

IAppEventBroadcaster::IAppEventBroadcaster() = default;
IAppEventBroadcaster::~IAppEventBroadcaster() = default;

int IAppEventBroadcaster::RegisterEventHook(EventHook hook, const void* owner) {
  eventHooks.insert_or_assign(nextHookId, Hook{hook, owner});
  return nextHookId++;
}

bool IAppEventBroadcaster::UnregisterEventHook(int id) { return eventHooks.erase(id) != 0; }

int IAppEventBroadcaster::UnregisterEventHooks(const void* owner) {
  if (owner == nullptr) return 0;
  return static_cast<int>(
      std::erase_if(eventHooks, [owner](const auto& hook) { return hook.second.owner == owner; }));
}

bool IAppEventBroadcaster::AnyEventHooksRegistered() const { return !eventHooks.empty(); }

/// Looks each hook up anew: one may remove itself or others, or release the broadcaster.
DATABINDING_CATCHES_CANCELLATION void IAppEventBroadcaster::OnEventDispatched(
    VtrString name, const std::vector<Any>& args) {
  const details::DeliveryScope scope(*this);
  const int end = nextHookId;
  for (auto next = eventHooks.begin(); next != eventHooks.end() && next->first < end;) {
    const auto [id, hook] = *next;
    try {
      hook.call(name, args);
    }
    DATABINDING_PASS_CANCELLATION catch (...) {
      if (!scope.IsBroadcasterGone()) ReportFailure(name);
    }
    if (scope.IsBroadcasterGone()) return;
    next = eventHooks.upper_bound(id);
  }
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

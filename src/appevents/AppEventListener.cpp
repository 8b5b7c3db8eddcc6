// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/AppEventListener.h"

#include <algorithm>
#include <utility>

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/WAppEventRegistrar.h"
#include "DataBinding/foundation/BindWeak.h"

namespace DataBinding {

IAppEventListener::~IAppEventListener() = default;
AppEventMapEntry::~AppEventMapEntry() = default;

AppEventListener::AppEventListener(bool activate) : activationCount(activate ? 1 : 0) {
  if (activate) WAppEventRegistrar::GetInstance().AddEventListener(this);
}

AppEventListener::~AppEventListener() {
  InvalidateWeakPtrs();
  if (activationCount > 0 && WAppEventRegistrar::HasInstance()) {
    WAppEventRegistrar::GetInstance().RemoveEventListener(this);
  }
  // The callback is filed under this address, at which another listener may be made.
  if (IAppEventBroadcaster::HasInstance()) {
    IAppEventBroadcaster::GetInstance().RemoveCleanupCallback(this);
  }
}

void AppEventListener::InitEventMap() { eventMapInitialised = &typeid(*this); }

bool AppEventListener::IsEventMapInitialised() const noexcept {
  return eventMapInitialised != nullptr && *eventMapInitialised == typeid(*this);
}

void AppEventListener::RegisterAppEventListeners() {
  auto& broadcaster = IAppEventBroadcaster::GetInstance();
  broadcaster.AddCleanupCallback(this,
                                 BindWeak(AsWeakPtr(), &AppEventListener::ClearSubscriptions));
  // An index loop, because Subscribe() may append to eventMap.
  for (std::size_t i = 0; i < eventMap.size(); ++i) {  // NOLINT(modernize-loop-convert)
    if (eventMap[i] != nullptr) subscriptions.push_back(eventMap[i]->Subscribe(broadcaster));
  }
}

void AppEventListener::UnregisterAppEventListeners() {
  ClearSubscriptions();
  if (IAppEventBroadcaster::HasInstance()) {
    IAppEventBroadcaster::GetInstance().RemoveCleanupCallback(this);
  }
}

void AppEventListener::ActivateAppEventListeners() {
  if (activationCount == 0) WAppEventRegistrar::GetInstance().AddEventListener(this);
  ++activationCount;
}

void AppEventListener::DeactivateAppEventListeners() {
  if (activationCount-- != 1) return;
  if (WAppEventRegistrar::HasInstance()) {
    WAppEventRegistrar::GetInstance().RemoveEventListener(this);
  }
  // After a flush that an exception has broken off, the registrar does not unsubscribe this
  // listener.
  if (!subscriptions.empty()) UnregisterAppEventListeners();
}

bool AppEventListener::HasListener(VtrStringView name) const {
  return std::ranges::any_of(
      eventMap, [name](const auto& entry) { return entry != nullptr && entry->Name() == name; });
}

/// Empties the list before the subscriptions end, because things that end with a callback may use
/// this listener.
void AppEventListener::ClearSubscriptions() { const auto ended = std::exchange(subscriptions, {}); }

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// One line of a listener's event map: an event that it wants, and how to subscribe to it.
///
/// AppEventListener::On makes them; a listener may add kinds of its own to its map, which owns
/// them. Subscribe is called each time that the listener is subscribed, on the delivering thread;
/// what it gives ends when the listener is unsubscribed.
#pragma once

#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

class DATABINDING_API AppEventMapEntry {
 public:
  /// For the event of that name.
  explicit AppEventMapEntry(VtrString eventName) noexcept : name(std::move(eventName)) {}
  AppEventMapEntry(const AppEventMapEntry&) = delete;
  AppEventMapEntry& operator=(const AppEventMapEntry&) = delete;
  virtual ~AppEventMapEntry();

  /// Subscribes what the entry calls; an entry that has nothing to call gives an inert one.
  virtual Subscription Subscribe(IAppEventBroadcaster& broadcaster) = 0;
  /// What AppEventListener::HasListener looks for.
  [[nodiscard]] const VtrString& Name() const noexcept { return name; }

 private:
  VtrString name;
};

}  // namespace DataBinding

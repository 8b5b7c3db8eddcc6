// SPDX-License-Identifier: Apache-2.0
/// One line of a listener's event map: an event that the listener wants, and how to subscribe to
/// it.
///
/// AppEventListener::On makes entries; a listener may also add entries of a class of its own to its
/// map, which owns them. The listener calls Subscribe each time that it is subscribed, on the
/// delivering thread, and ends the subscription when it is unsubscribed.
#pragma once

#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

class DATABINDING_API AppEventMapEntry {
 public:
  /// Makes an entry for the event of that name.
  explicit AppEventMapEntry(VtrString eventName) noexcept : name(std::move(eventName)) {}
  AppEventMapEntry(const AppEventMapEntry&) = delete;
  AppEventMapEntry& operator=(const AppEventMapEntry&) = delete;
  virtual ~AppEventMapEntry();

  /// Subscribes the entry's callback. An entry without a callback gives an inert subscription.
  virtual Subscription Subscribe(IAppEventBroadcaster& broadcaster) = 0;
  /// The name by which AppEventListener::HasListener finds the entry.
  [[nodiscard]] const VtrString& Name() const noexcept { return name; }

 private:
  VtrString name;
};

}  // namespace DataBinding

/// One line of a listener's event map: an event that it wants, and how to subscribe to it.
///
/// AppEventListener::On makes them; a listener may add kinds of its own. Owned by the listener's
/// map. Used on the delivering thread.
#pragma once

#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

class DATABINDING_API AppEventMapEntry {
 public:
  explicit AppEventMapEntry(VtrString eventName) noexcept : name(std::move(eventName)) {}
  AppEventMapEntry(const AppEventMapEntry&) = delete;
  AppEventMapEntry& operator=(const AppEventMapEntry&) = delete;
  virtual ~AppEventMapEntry();

  virtual Subscription Subscribe(IAppEventBroadcaster& broadcaster) = 0;
  [[nodiscard]] const VtrString& Name() const noexcept { return name; }

 private:
  VtrString name;
};

}  // namespace DataBinding

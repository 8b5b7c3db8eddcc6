// SPDX-License-Identifier: Apache-2.0
/// The interface by which WAppEventRegistrar calls a listener to application events.
///
/// The registrar has the listener fill its event map when it is first needed, has it subscribe to
/// the events of the map, and later has it unsubscribe. AppEventListener implements this. The
/// registrar calls with its lock held, on the thread that flushes, registers or removes.
#pragma once

#include "DataBinding/Export.h"

namespace DataBinding {

class DATABINDING_API IAppEventListener {
 public:
  IAppEventListener() noexcept = default;
  IAppEventListener(const IAppEventListener&) = delete;
  IAppEventListener& operator=(const IAppEventListener&) = delete;
  virtual ~IAppEventListener();

  /// Says which events the listener wants. Called each time before RegisterAppEventListeners.
  virtual void InitEventMap() = 0;
  /// Subscribes the listener to its events. Called after InitEventMap.
  virtual void RegisterAppEventListeners() = 0;
  /// Ends all subscriptions. Must also do for a listener that was never subscribed: one that was
  /// removed in its own InitEventMap, or one that a flush did not reach because another listener
  /// threw.
  virtual void UnregisterAppEventListeners() = 0;
};

}  // namespace DataBinding

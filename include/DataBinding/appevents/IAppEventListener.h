// SPDX-License-Identifier: Apache-2.0
/// What the registrar sees of a listener to application events.
///
/// It fills its event map when it is first needed, subscribes what the map says, and unsubscribes
/// on request. AppEventListener is the reusable implementation. Called with the registrar's lock
/// held, on the thread that flushes, registers or removes.
#pragma once

#include "DataBinding/Export.h"

namespace DataBinding {

class DATABINDING_API IAppEventListener {
 public:
  IAppEventListener() noexcept = default;
  IAppEventListener(const IAppEventListener&) = delete;
  IAppEventListener& operator=(const IAppEventListener&) = delete;
  virtual ~IAppEventListener();

  /// Says which events it wants. Called again each time before it is subscribed anew.
  virtual void InitEventMap() = 0;
  /// Subscribes. Called after InitEventMap.
  virtual void RegisterAppEventListeners() = 0;
  /// Unsubscribes. Also called for a listener that was not subscribed, because it was removed in
  /// its own InitEventMap or another one threw out of the flush before it was reached.
  virtual void UnregisterAppEventListeners() = 0;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Brings the events that any thread raises to a loop: something to wait for, which becomes ready
/// when some are queued, and the delivery of them.
///
/// It is made before the threads that raise events, and ends after them.
#pragma once

#include <DataBinding/appevents/IdlePass.h>

#include "Waiting.h"

namespace Sysmon {

class EventPump {
 public:
  EventPump() : idle([this] { wakeUp.Set(); }) {}

  /// Ready when events are queued.
  [[nodiscard]] Waitable Ready() const noexcept { return wakeUp.Ready(); }
  /// Delivers what is queued, and what its listeners raise. Throws what one of them threw.
  void Deliver();

 private:
  WakeUp wakeUp;
  DataBinding::IdlePass idle;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// Joins the queue of events to a loop: it gives the loop a thing to wait for, which becomes ready
/// when events are queued, and delivers them.
///
/// It is made before the threads that raise events, and ends after them.
#pragma once

#include <DataBinding/appevents/IdlePass.h>

#include "Waiting.h"

namespace Sysmon {

class EventPump {
 public:
  EventPump() : idle([this] { wakeUp.Set(); }) {}

  /// The thing that is ready when events are queued.
  [[nodiscard]] Waitable Ready() const noexcept { return wakeUp.Ready(); }
  /// Delivers the queued events, and those that their listeners raise. Throws the first exception
  /// of a listener.
  void Deliver();

 private:
  WakeUp wakeUp;
  DataBinding::IdlePass idle;
};

}  // namespace Sysmon

/// Brings the events that any thread raises to a loop that polls: a descriptor that is readable
/// when some are queued, and the delivery of them.
///
/// It is made before the threads that raise events, and ends after them.
#pragma once

#include <DataBinding/IdlePass.h>

namespace Sysmon {

/// A descriptor that any thread makes readable.
class WakeUp {
 public:
  /// Throws std::system_error when there is none to be had.
  WakeUp();
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;
  ~WakeUp();

  [[nodiscard]] int Descriptor() const noexcept { return descriptor; }
  void Set() const noexcept;
  void Clear() const noexcept;

 private:
  int descriptor;
};

class EventPump {
 public:
  EventPump() : idle([this] { wakeUp.Set(); }) {}

  /// Readable when events are queued.
  [[nodiscard]] int Descriptor() const noexcept { return wakeUp.Descriptor(); }
  /// Delivers what is queued, and what its listeners raise. Throws what one of them threw.
  void Deliver();

 private:
  WakeUp wakeUp;
  DataBinding::IdlePass idle;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// These functions run the listeners of one broadcast so that an exception or a hardware fault of
/// one listener ends that listener only.
///
/// Arming the guard costs more than a call does, so it is armed once for a whole broadcast and
/// again after each fault. The guarded function is therefore called again after a failure, and has
/// to know how far it has come: it keeps a cursor, which it moves on before it calls a listener.
#pragma once

#include <cstdint>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

/// Runs a function and returns 0, or the code of the hardware fault that ended it. This is the
/// part of the guard that differs by platform. It catches no C++ exceptions.
std::uint32_t RunTrapping(void (*run)(void* context), void* context);

/// Runs a function with the guard off: its hardware faults are not caught, not even by a guarded
/// run that this call is nested in.
void RunUntrapped(void (*run)(void* context), void* context);

/// Holds what RunGuarded is given. Run calls the step until it returns without an exception.
struct GuardedStep {
  void (*step)(void* context);
  void* context;
  const VtrString& property;

  static void Run(void* self);
};

/// Calls the step, and calls it again after each failure, until it returns. Failures are reported
/// under the property's name. Only the cancellation of the thread leaves this function. It stands
/// here to become a part of its callers, of which the announcement of one name must be fast.
inline void RunGuarded(void (*step)(void* context), void* context, const VtrString& property) {
  GuardedStep guarded{step, context, property};
  if (!IsHardwareFaultGuardOn()) return RunUntrapped(&GuardedStep::Run, &guarded);
  while (const auto code = RunTrapping(&GuardedStep::Run, &guarded)) {
    ReportFailure(property, nullptr, code);
  }
}

}  // namespace DataBinding::details

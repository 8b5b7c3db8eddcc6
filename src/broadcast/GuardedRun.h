// SPDX-License-Identifier: Apache-2.0
/// These functions run the listeners of one broadcast so that an exception or a hardware fault of
/// one listener ends that listener only.
///
/// Arming the guard costs more than a call does, so it is armed once for a whole broadcast and
/// again after each fault. The guarded function is therefore called again after a failure, and has
/// to know how far it has come: it keeps a cursor, which it moves on before it calls a listener.
#pragma once

#include <cstdint>

#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

/// Calls the step, and calls it again after each failure, until it returns. Failures are reported
/// under the property's name. Only the cancellation of the thread leaves this function.
void RunGuarded(void (*step)(void* context), void* context, const VtrString& property);

/// Runs a function and returns 0, or the code of the hardware fault that ended it. This is the
/// part of the guard that differs by platform. It catches no C++ exceptions.
std::uint32_t RunTrapping(void (*run)(void* context), void* context);

/// Runs a function with the guard off: its hardware faults are not caught, not even by a guarded
/// run that this call is nested in.
void RunUntrapped(void (*run)(void* context), void* context);

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// Runs the listeners of one broadcast so that what one of them throws, or the hardware fault that
/// it causes, costs that listener only.
///
/// The guard is armed once for a whole broadcast and again after each fault. A step therefore keeps
/// its own cursor, and moves it on before it calls a listener.
#pragma once

#include <cstdint>

#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

/// Calls the step again and again until it comes to its end. Failures are reported under the
/// property's name. Lets nothing out but a thread's cancellation.
void RunGuarded(void (*step)(void* context), void* context, const VtrString& property);

/// Runs a function and answers 0, or the code of the hardware fault that ended it. The platform's
/// part of the guard: catches no exceptions.
std::uint32_t RunTrapping(void (*run)(void* context), void* context);

/// Runs a function whose faults no guarded run around it may catch.
void RunUntrapped(void (*run)(void* context), void* context);

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// What happens to a property listener that throws or faults: it is skipped and the next one runs.
///
/// C++ exceptions are always caught. Hardware faults (access violations, divisions by zero, illegal
/// instructions) are caught as well unless that is switched off, at run time here or at build time
/// with the CMake option DATABINDING_FAULT_GUARD. A faulting listener is abandoned where it stood:
/// the destructors of its frames do not run, so locks stay held and memory leaks; a scope that was
/// calling listeners, a batch that was open and an event that was being delivered stay so for ever,
/// and the broadcaster of that event is not to be used any more. A stack overflow
/// is survived on Windows, but for announcements that nest without end, and elsewhere only on a
/// thread that has an alternate signal stack. Thread cancellation passes through. All functions
/// here may be called on any thread.
#pragma once

#include <cstdint>
#include <exception>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

/// Tells of a listener that let an exception or a fault out, or of a data source whose building
/// asks for that same source.
struct ListenerFailure {
  /// The name that was announced; for a data source that asks for itself, the source's name.
  VtrString property;
  /// The exception, or null for a hardware fault.
  std::exception_ptr exception;
  /// The signal number or the structured exception code, or 0 for an exception.
  std::uint32_t faultCode = 0;
};

/// Sets who is told, on the broadcasting thread, of what was swallowed; null, which is how a
/// process starts, for nobody. What the handler throws is dropped. While there is none, or
/// the object that it is bound to has gone, a debug build of the library writes the first failure
/// of the process to standard error, so that a listener which is skipped without a word can be
/// found.
DATABINDING_API void SetListenerFailureHandler(
    const RepeatingCallback<void(const ListenerFailure&)>& handler);

/// Switches the guard against hardware faults for broadcasts that start from now on.
///
/// On POSIX the first broadcast that has listeners, with the guard on, or the first failure that
/// the failure handler is told of, installs handlers for SIGSEGV, SIGBUS, SIGFPE and SIGILL; from
/// then on the library stays loaded. Faults outside a listener go to whoever had installed a
/// handler before. Whoever installs one later without chaining takes the faults over, those of
/// listeners too.
DATABINDING_API void SetHardwareFaultGuard(bool on) noexcept;
/// False as well where the library was built without the guard.
[[nodiscard]] DATABINDING_API bool IsHardwareFaultGuardOn() noexcept;

namespace details {

/// Tells the failure handler of an exception that goes nowhere else, or of a hardware fault.
void ReportFailure(const VtrString& name, const std::exception_ptr& exception,
                   std::uint32_t code = 0);

}  // namespace details

}  // namespace DataBinding

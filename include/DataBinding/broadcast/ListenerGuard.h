// SPDX-License-Identifier: Apache-2.0
/// A property listener that throws or faults is skipped, and the next one runs. The functions of
/// this header set who is told of that, and switch the guard against hardware faults.
///
/// C++ exceptions are always caught. Hardware faults (access violations, divisions by zero, illegal
/// instructions) are caught as well, unless that is switched off: at run time by
/// SetHardwareFaultGuard, or at build time by the CMake option DATABINDING_FAULT_GUARD.
///
/// A listener that faults is abandoned where it stood. The destructors of its frames do not run, so
/// its locks stay held and its memory leaks. A scope that was calling listeners, a batch that was
/// open and an event that was being delivered stay in that state for ever, and the broadcaster of
/// that event is not to be used any more.
///
/// A stack overflow is survived on Windows, except where announcements nest without end. Elsewhere
/// it is survived only on a thread that has an alternate signal stack. The cancellation of a thread
/// is not caught. All functions here may be called on any thread.
#pragma once

#include <cstdint>
#include <exception>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

/// Describes one failure: a listener let an exception or a fault out, or the constructor of a data
/// source asked for the source that it was building.
struct ListenerFailure {
  /// The name that was announced, or the name of the data source that was asked for while it was
  /// built, or "child scopes" for a callback of ObserveChildren.
  VtrString property;
  /// This is the exception, or null for a hardware fault.
  std::exception_ptr exception;
  /// This is the signal number or the structured exception code of a hardware fault, and 0 for an
  /// exception.
  std::uint32_t faultCode = 0;
};

/// Returns what an exception says of itself, for a log or a message: `what()`, or the text where a
/// VtrString was thrown. Says so for an exception of any other class. Null has no text.
[[nodiscard]] DATABINDING_API VtrString ExceptionText(const std::exception_ptr& exception);

/// Sets the handler that is told of each swallowed failure, on the thread on which it happened. A
/// process starts without a handler, and null removes it. What the handler throws is dropped.
///
/// While there is no handler, or the object that it is bound to has gone, a debug build of the
/// library writes the first failure of the process to standard error. Otherwise nothing would show
/// that a listener was skipped.
DATABINDING_API void SetListenerFailureHandler(
    const RepeatingCallback<void(const ListenerFailure&)>& handler);

/// Tells the handler of an exception that was caught, as the library does for its listeners. Code
/// that calls functions of the application from within a toolkit, which lets no exception through,
/// has them reported in this way. The name says what was called. Nothing is thrown.
DATABINDING_API void ReportListenerFailure(const VtrString& name,
                                           const std::exception_ptr& exception) noexcept;

/// Switches the guard against hardware faults on or off, for broadcasts that start from now on.
///
/// While the guard is on, a POSIX process gets handlers for SIGSEGV, SIGBUS, SIGFPE and SIGILL at
/// its first broadcast that has listeners, or at the first failure that the failure handler is told
/// of. From then on the library stays loaded. A fault outside of listeners is passed on to the
/// handler that was installed before. A handler that is installed later and does not chain takes
/// all faults over, also the faults of listeners.
DATABINDING_API void SetHardwareFaultGuard(bool on) noexcept;
/// Returns false as well where the library was built without the guard.
[[nodiscard]] DATABINDING_API bool IsHardwareFaultGuardOn() noexcept;

namespace details {

/// Tells the failure handler of an exception that nobody else learns of, or of a hardware fault.
void ReportFailure(const VtrString& name, const std::exception_ptr& exception,
                   std::uint32_t code = 0);

}  // namespace details

}  // namespace DataBinding

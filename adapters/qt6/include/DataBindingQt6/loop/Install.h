// SPDX-License-Identifier: Apache-2.0
/// Install makes the library fit for a program with windows.
///
/// Failures of property listeners, of observers and of functions that the adapter calls go to Qt's
/// log, as warnings of the category "databinding". Without that a release build of the library says
/// nothing of them.
///
/// The guard against hardware faults is switched off, and the log says so. With it a null pointer
/// in a function that a property calls would be skipped: the painter stays open, locks stay held,
/// and neither the user nor a core file tells of the crash. A program that wants the guard all the
/// same calls SetHardwareFaultGuard(true) afterwards (ListenerGuard.h).
#pragma once

#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

/// Does so for the whole process. Call it once, at the beginning of the program; calling it again
/// changes nothing, unless another failure handler was set meanwhile.
DATABINDING_QT6_API void Install();

}  // namespace DataBinding::Qt6

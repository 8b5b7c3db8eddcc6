// SPDX-License-Identifier: Apache-2.0
/// Writes what is in the log of events as lines.
#pragma once

#include "../common/EventLog.h"

namespace Sysmon {

/// Tells a measurement, of which there are several each second, from a thing that has happened.
[[nodiscard]] bool IsMeasurement(const EventLog::Entry& entry);

/// The time, the name and the arguments of an event, in one line.
[[nodiscard]] VtrString ShowEntry(const EventLog::Entry& entry);

}  // namespace Sysmon

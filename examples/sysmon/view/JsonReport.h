// SPDX-License-Identifier: Apache-2.0
/// Writes the machine and the log of events as JSON. It writes all sources and lists that it finds,
/// and knows no type of a value; only the details of processes are found by their names.
///
/// The machine is an object with one object per source, and one array per list.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "../common/EventLog.h"
#include "../common/Scopes.h"

namespace Sysmon {

/// Sizes are in bytes, shares are parts of 1, and times are in seconds.
[[nodiscard]] nlohmann::json ReportMachine(IDataSourceProvider& root);

/// An array of the events, oldest first. An argument that has parts is an object.
[[nodiscard]] nlohmann::json ReportEvents(const EventLog& log);

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// The whole tree of scopes as JSON, found by walking it, and the log of events: no name of a
/// source, property or event is known here.
///
/// The root scope is an object with one object per source. Child scopes are in arrays named after
/// their category, each as one object with the members of all its sources.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "../common/EventLog.h"
#include "../common/Scopes.h"

namespace Sysmon {

/// Builds every source that can be built. Bytes are counts, shares parts of 1, times seconds.
[[nodiscard]] nlohmann::json ReportTree(IDataSourceProvider& root);

/// An array of the events, oldest first. An argument that has parts is an object.
[[nodiscard]] nlohmann::json ReportEvents(const EventLog& log);

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// Writes the whole tree of scopes and the log of events as JSON. It walks the tree, and knows no
/// name of a source, a property or an event, and no type of a value.
///
/// The root scope is an object with one object per source. Child scopes are in arrays named after
/// their category, each as one object with the members of all its sources.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "../common/EventLog.h"
#include "../common/Scopes.h"

namespace Sysmon {

/// Builds every source that can be built. Sizes are in bytes, shares are parts of 1, and times are
/// in seconds.
[[nodiscard]] nlohmann::json ReportTree(IDataSourceProvider& root);

/// An array of the events, oldest first. An argument that has parts is an object.
[[nodiscard]] nlohmann::json ReportEvents(const EventLog& log);

}  // namespace Sysmon

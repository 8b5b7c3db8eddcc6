// SPDX-License-Identifier: Apache-2.0
/// Lists and sets the limits of alarms, knowing no more than the name of their source.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Scopes.h"

namespace Sysmon {

inline constexpr wchar_t limitSource[] = L"Alarms";

/// The names of the limits that can be set, in order.
[[nodiscard]] std::vector<VtrString> LimitNames(IDataSourceProvider& root);

/// Sets a limit from a text; its name may be in any case. Gives what is wrong, or an empty text.
[[nodiscard]] VtrString SetLimit(IDataSourceProvider& root, const VtrString& limit,
                                 const VtrString& text);

/// Sets limits that were given as pairs of name and value. Gives what is wrong with the first one
/// that cannot be set, or an empty text.
[[nodiscard]] VtrString SetLimits(IDataSourceProvider& root,
                                  const std::vector<std::pair<std::string, std::string>>& limits);

}  // namespace Sysmon

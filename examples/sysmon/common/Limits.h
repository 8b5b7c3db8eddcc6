// SPDX-License-Identifier: Apache-2.0
/// The limits of alarms, as anybody finds them who knows no more than the source's name.
#pragma once

#include <vector>

#include "Scopes.h"

namespace Sysmon {

inline constexpr wchar_t limitSource[] = L"Alarms";

/// The names of the limits that can be set, in order.
[[nodiscard]] std::vector<VtrString> LimitNames(IDataSourceProvider& root);

/// Sets a limit, whose name may be in any case, from a text. Answers what is wrong, or nothing.
[[nodiscard]] VtrString SetLimit(IDataSourceProvider& root, const VtrString& limit,
                                 const VtrString& text);

}  // namespace Sysmon

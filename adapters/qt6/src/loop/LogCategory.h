// SPDX-License-Identifier: Apache-2.0
/// LogCategory names what the adapter writes to Qt's log.
#pragma once

#include <QLoggingCategory>

namespace DataBinding::Qt6 {

/// Returns the category of all that the adapter writes to the log: "databinding".
[[nodiscard]] const QLoggingCategory& LogCategory();

}  // namespace DataBinding::Qt6

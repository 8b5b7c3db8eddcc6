// SPDX-License-Identifier: Apache-2.0
/// These functions word exceptions for Qt's log and for the signal `failed`.
#pragma once

#include <QLoggingCategory>
#include <QString>
#include <exception>

namespace DataBinding::Qt6 {

/// Returns the category of all that the adapter writes to the log: "databinding".
[[nodiscard]] const QLoggingCategory& LogCategory();
/// Returns what the exception says of itself.
[[nodiscard]] QString Describe(const std::exception_ptr& exception);

}  // namespace DataBinding::Qt6

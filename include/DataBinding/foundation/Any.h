// SPDX-License-Identifier: Apache-2.0
/// A type-erased value, the form in which events carry their arguments to those who do not know
/// their signature.
///
/// The standard one: owns a copy of what it holds, is copied by value, and compares types by their
/// identity across modules.
#pragma once

#include <any>

namespace VtrUtils {
/// Holds a copy of any copyable value; std::any_cast gives it back.
using Any = std::any;
}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Any;
}  // namespace DataBinding

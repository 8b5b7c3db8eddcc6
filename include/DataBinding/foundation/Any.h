// SPDX-License-Identifier: Apache-2.0
/// An Any holds a value of any type. Events hand their arguments over in this form to code that
/// does not know their signature.
///
/// It is std::any: it owns a copy of the value and is copied by value. A type is recognised across
/// modules.
#pragma once

#include <any>

namespace VtrUtils {
/// Holds a copy of any copyable value. std::any_cast gives the value back.
using Any = std::any;
}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Any;
}  // namespace DataBinding

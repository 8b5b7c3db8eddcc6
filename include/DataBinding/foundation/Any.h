/// A type-erased value, the form in which events carry their arguments to those who do not know
/// their signature.
///
/// The standard one: owns a copy of what it holds, is copied by value, and compares types by their
/// identity across modules.
#pragma once

#include <any>

namespace VtrUtils {
using Any = std::any;
}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Any;
}  // namespace DataBinding

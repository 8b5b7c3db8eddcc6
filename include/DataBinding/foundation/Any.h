/// A type-erased value, the form in which events carry their arguments to those who do not know
/// their signature.
#pragma once

#include <any>

namespace VtrUtils {
using Any = std::any;
}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Any;
}  // namespace DataBinding

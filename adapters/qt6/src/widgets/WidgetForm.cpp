// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/details/WidgetForm.h"

namespace DataBinding::Qt6::details {

/// A number that the kind does not have stays as it is, and the property refuses it.
Value NumberOfKind(const Value& number, ValueKind kind) {
  if (kind == ValueKind::Double) {
    const auto real = FromValue<double>(number);
    return real ? Value(*real) : number;
  }
  const auto whole = FromValue<std::int64_t>(number);
  return whole ? Value(*whole) : number;
}

}  // namespace DataBinding::Qt6::details

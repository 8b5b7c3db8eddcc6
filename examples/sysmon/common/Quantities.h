// SPDX-License-Identifier: Apache-2.0
/// Figures that carry their unit in their type.
///
/// The model and the views share these types: a view that finds a property by its name alone knows
/// from its type how to show it.
#pragma once

#include <chrono>
#include <cstdint>
#include <variant>

#include <DataBinding/foundation/String.h>

namespace Sysmon {

using DataBinding::VtrString;

using Count = std::uint64_t;
using Seconds = std::chrono::duration<double>;

template <class Unit, class Number>
struct Quantity {
  Number value{};

  friend bool operator==(const Quantity&, const Quantity&) = default;
  friend bool operator<(const Quantity& left, const Quantity& right) {
    return left.value < right.value;
  }
};

using Bytes = Quantity<struct ByteUnit, std::uint64_t>;
using BytesPerSecond = Quantity<struct ByteRateUnit, double>;
/// A part of a whole, which is 1.
using Share = Quantity<struct ShareUnit, double>;

/// Every type that a property of this program may have.
using Value = std::variant<VtrString, Count, double, Bytes, BytesPerSecond, Share, Seconds, bool>;

}  // namespace Sysmon

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
#include <DataBinding/reflection/PropertyResult.h>
#include <DataBinding/reflection/Value.h>
#include <DataBinding/reflection/ValueForm.h>

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

/// A quantity as people read it: 1536 bytes as "1.5 KiB".
///@{
[[nodiscard]] VtrString Show(Bytes bytes);
[[nodiscard]] VtrString Show(BytesPerSecond speed);
[[nodiscard]] VtrString Show(Share share);
[[nodiscard]] VtrString Show(Seconds time);
///@}

/// Every type that a property of this program may have.
using Value = std::variant<VtrString, Count, double, Bytes, BytesPerSecond, Share, Seconds, bool>;

}  // namespace Sysmon

/// Without its type a quantity is its number: bytes, bytes per second, or a part of 1. Its text is
/// for people.
template <class Unit, class Number>
struct DataBinding::ValueForm<Sysmon::Quantity<Unit, Number>> {
  using Quantity = Sysmon::Quantity<Unit, Number>;

  static constexpr auto kind = ValueForm<Number>::kind;
  static Value ToValue(const Quantity& quantity) { return quantity.value; }
  static VtrString ToText(const Quantity& quantity) { return Sysmon::Show(quantity); }
  static PropertyValue<Quantity> FromValue(const Value& value) {
    const auto number = DataBinding::FromValue<Number>(value);
    if (!number) return {{}, number.error, number.text};
    return {Quantity{*number}, PropertyError::None, {}};
  }
};

/// Without its type a time is its number of seconds. Its text is for people.
template <>
struct DataBinding::ValueForm<Sysmon::Seconds> {
  static constexpr auto kind = ValueKind::Double;
  static Value ToValue(const Sysmon::Seconds& time) { return time.count(); }
  static VtrString ToText(const Sysmon::Seconds& time) { return Sysmon::Show(time); }
  static PropertyValue<Sysmon::Seconds> FromValue(const Value& value) {
    const auto number = DataBinding::FromValue<double>(value);
    if (!number) return {{}, number.error, number.text};
    return {Sysmon::Seconds(*number), PropertyError::None, {}};
  }
};

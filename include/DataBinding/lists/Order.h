// SPDX-License-Identifier: Apache-2.0
/// By() makes the order of a SortedList from fields of the rows.
///
/// Each Then() decides between rows that all before it have found equal. Numbers with a fraction
/// are ordered totally: what is not a number stands last in either direction. A field may be a
/// member, a member function or any other function of a row; its type has `<`. A property is
/// compared by its value.
///
/// A SortedList also takes any other function `bool(const Row&, const Row&)` that says whether the
/// first row stands before the second.
///
///   SortedList busiest(processes, By(&Process::cpu, Order::Descending).Then(&Process::name));
#pragma once

#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

#include "DataBinding/lists/Fields.h"

namespace DataBinding {

/// Says which values stand first.
enum class Order { Ascending, Descending };

namespace details {

/// Answers less than 0 if the first value stands first, more than 0 if the second does, else 0.
template <class T>
[[nodiscard]] int CompareValues(const T& one, const T& other, Order order) {
  if constexpr (std::floating_point<T>) {
    if (std::isnan(one) != std::isnan(other)) return std::isnan(one) ? 1 : -1;
  }
  const bool isLess = one < other;
  if (!isLess && !(other < one)) return 0;
  return isLess == (order == Order::Ascending) ? -1 : 1;
}

/// Types whose values can be turned into numbers that stand in the same order.
template <class T>
concept Numbered = (std::integral<T> && sizeof(T) <= sizeof(std::uint64_t)) ||
                   std::same_as<T, float> || std::same_as<T, double>;

/// Returns a number for a value. The numbers of values compare as CompareValues compares the
/// values.
template <Numbered T>
[[nodiscard]] std::uint64_t NumberOf(T value, Order order) noexcept {
  constexpr std::uint64_t sign = std::uint64_t{1} << 63;
  std::uint64_t bits = 0;
  if constexpr (std::floating_point<T>) {
    if (std::isnan(value)) return ~bits;
    bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : double{value});  // -0.0 equals 0.0
    bits = (bits & sign) == 0 ? bits | sign : ~bits;
  } else if constexpr (std::signed_integral<T>) {
    bits = static_cast<std::uint64_t>(value) ^ sign;
  } else {
    bits = value;
  }
  return order == Order::Ascending ? bits : ~bits;
}

/// The order by one field.
template <class Field>
class OrderByField {
 public:
  OrderByField(Field itsField, Order itsDirection)
      : field(std::move(itsField)), direction(itsDirection) {}
  template <class Row>
  [[nodiscard]] int Compare(const Row& one, const Row& other) const {
    return CompareValues(ValueIn(std::invoke(field, one)), ValueIn(std::invoke(field, other)),
                         direction);
  }
  template <class Row>
  requires Numbered<TypeIn<std::invoke_result_t<const Field&, const Row&>>>
  [[nodiscard]] std::uint64_t Number(const Row& row) const {
    return NumberOf(ValueIn(std::invoke(field, row)), direction);
  }

 private:
  Field field;
  Order direction;
};

/// The order by a field, where another order finds rows equal.
template <class First, class Second>
class OrderByBoth {
 public:
  OrderByBoth(First itsFirst, Second itsSecond)
      : first(std::move(itsFirst)), second(std::move(itsSecond)) {}
  template <class Row>
  [[nodiscard]] int Compare(const Row& one, const Row& other) const {
    const int found = first.Compare(one, other);
    return found != 0 ? found : second.Compare(one, other);
  }
  template <class Row>
  [[nodiscard]] std::uint64_t Number(const Row& row) const requires requires(const First& order) {
    order.Number(row);
  }
  { return first.Number(row); }

 private:
  First first;
  Second second;
};

}  // namespace details

/// By() returns a RowOrdering: a function that says whether the first of two rows stands before the
/// second.
template <class Fields>
class RowOrdering {
 public:
  /// Takes what compares two rows.
  explicit RowOrdering(Fields itsFields) : fields(std::move(itsFields)) {}

  /// Orders rows that are equal so far by a further field.
  template <class Field>
  [[nodiscard]] auto Then(Field field, Order order = Order::Ascending) const {
    using Last = details::OrderByField<Field>;
    using Both = details::OrderByBoth<Fields, Last>;
    return RowOrdering<Both>(Both(fields, Last(std::move(field), order)));
  }
  /// Says whether the first row stands before the second.
  template <class Row>
  [[nodiscard]] bool operator()(const Row& one, const Row& other) const {
    return fields.Compare(one, other) < 0;
  }
  /// Returns a number for a row, where the first field is a number: the row of a lesser one stands
  /// first. Views sort many rows by it.
  template <class Row>
  [[nodiscard]] std::uint64_t Number(const Row& row) const requires requires(const Fields& order) {
    order.Number(row);
  }
  { return fields.Number(row); }

 private:
  Fields fields;
};

/// Orders rows by a field.
template <class Field>
[[nodiscard]] auto By(Field field, Order order = Order::Ascending) {
  using First = details::OrderByField<Field>;
  return RowOrdering<First>(First(std::move(field), order));
}

}  // namespace DataBinding

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

#include <cmath>
#include <concepts>
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

// SPDX-License-Identifier: Apache-2.0
/// A Value holds what a property or a field is worth, for code that does not know its C++ type: an
/// item model, a debugger window, a writer of JSON, another language.
///
/// It is one of a few kinds: nothing, a truth value, a whole number with or without a sign, a
/// floating-point number, or a text. A type becomes one of these by its form (ValueForm.h). A Value
/// is copied freely, compared, and handed to other threads. It has the size of two pointers, and
/// copying it allocates nothing, since texts share their characters.
///
///   const Value size = 3;
///   size == 3U;                         // true: numbers that are not negative have one kind
///   Value(3.0) == size;                 // false: the kinds differ; FromValue<int> takes both
///   std::cout << Value(0.25);           // 0.25 in every locale
#pragma once

#include <concepts>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <utility>
#include <variant>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/details/NumberText.h"

namespace DataBinding {

/// Says what a Value holds.
enum class ValueKind {
  Nothing,
  Bool,
  Signed,    ///< a whole number in 64 bits, also an unsigned one as long as it fits
  Unsigned,  ///< a whole number above those
  Double,
  Text
};

namespace details {

/// The numbers that a Value holds without loss.
template <class T>
concept ValueNumber = Number<T> && !std::same_as<T, long double>;

}  // namespace details

class Value {
 public:
  /// Makes a value of kind Nothing.
  Value() noexcept = default;
  /// Makes a value of kind Bool. Only a bool makes one: pointers and numbers do not.
  template <std::same_as<bool> T>
  Value(T truth) noexcept : content(truth) {}
  /// Makes a number. Whole numbers that fit are signed, whatever the type was.
  template <details::ValueNumber T>
  Value(T number) noexcept : content(Store(number)) {}
  /// Makes a text.
  ///@{
  Value(VtrString text) noexcept : content(std::move(text)) {}
  Value(const wchar_t* text) : content(VtrString(text)) {}
  ///@}

  /// Says what the value holds.
  [[nodiscard]] ValueKind Kind() const noexcept { return static_cast<ValueKind>(content.index()); }
  /// Returns the content if it is of exactly this type, or else null. T is bool, std::int64_t,
  /// std::uint64_t, double or VtrString. FromValue converts.
  template <class T>
  [[nodiscard]] const T* Get() const noexcept {
    return std::get_if<T>(&content);
  }
  /// Calls visit with the content, which is std::monostate for nothing, and returns its answer.
  template <class Visitor>
  decltype(auto) Visit(Visitor&& visit) const {
    return std::visit(std::forward<Visitor>(visit), content);
  }
  /// Returns the text that TextConverter shows for the content. Nothing is the empty text.
  [[nodiscard]] DATABINDING_API VtrString ToText() const;

  /// Tells whether both hold the same of one kind. As numbers do, a NaN differs from itself.
  friend bool operator==(const Value& left, const Value& right) = default;
  /// Writes the text as UTF-8.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const Value& value) {
    return out << value.ToText();
  }

 private:
  /// The order is that of ValueKind.
  using Content =
      std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, VtrString>;

  template <details::ValueNumber T>
  static Content Store(T number) noexcept {
    if constexpr (std::floating_point<T>) {
      return static_cast<double>(number);
    } else {
      if (std::in_range<std::int64_t>(number)) return static_cast<std::int64_t>(number);
      return static_cast<std::uint64_t>(number);
    }
  }

  Content content;
};

}  // namespace DataBinding

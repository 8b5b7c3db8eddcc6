// SPDX-License-Identifier: Apache-2.0
/// A Value holds what a property or a field is worth, for code that does not know its C++ type: an
/// item model, a debugger window, a writer of JSON, another language.
///
/// It is one of a few kinds: nothing, a truth value, a whole number with or without a sign, a
/// floating-point number, or a text. A type becomes one of these by its form (ValueForm.h). A Value
/// is copied freely, compared, and handed to other threads. It has the size of
/// three pointers, and copying it allocates nothing, since texts share their characters.
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

/// Returns true for the kinds of numbers.
[[nodiscard]] constexpr bool IsNumber(ValueKind kind) noexcept {
  return kind == ValueKind::Signed || kind == ValueKind::Unsigned || kind == ValueKind::Double;
}

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
  Value(T truth) noexcept : kind(ValueKind::Bool) {
    number.truth = truth;
  }
  /// Makes a number. Whole numbers that fit are signed, whatever the type was.
  template <details::ValueNumber T>
  Value(T given) noexcept {
    if constexpr (std::floating_point<T>) {
      kind = ValueKind::Double;
      number.real = static_cast<double>(given);
    } else if (std::in_range<std::int64_t>(given)) {
      kind = ValueKind::Signed;
      number.whole = static_cast<std::int64_t>(given);
    } else {
      kind = ValueKind::Unsigned;
      number.natural = static_cast<std::uint64_t>(given);
    }
  }
  /// Makes a text.
  ///@{
  Value(VtrString given) noexcept : kind(ValueKind::Text), text(std::move(given)) {}
  Value(const wchar_t* given) : Value(VtrString(given)) {}
  ///@}

  /// Says what the value holds.
  [[nodiscard]] ValueKind Kind() const noexcept { return kind; }
  /// Returns the content if it is of exactly this type, or else null. T is bool, std::int64_t,
  /// std::uint64_t, double or VtrString. FromValue converts.
  template <class T>
  [[nodiscard]] const T* Get() const noexcept {
    if constexpr (std::same_as<T, bool>) {
      return kind == ValueKind::Bool ? &number.truth : nullptr;
    } else if constexpr (std::same_as<T, std::int64_t>) {
      return kind == ValueKind::Signed ? &number.whole : nullptr;
    } else if constexpr (std::same_as<T, std::uint64_t>) {
      return kind == ValueKind::Unsigned ? &number.natural : nullptr;
    } else if constexpr (std::same_as<T, double>) {
      return kind == ValueKind::Double ? &number.real : nullptr;
    } else {
      static_assert(std::same_as<T, VtrString>, "a Value holds no such type");
      return kind == ValueKind::Text ? &text : nullptr;
    }
  }
  /// Calls visit with the content, which is std::monostate for nothing, and returns its answer.
  template <class Visitor>
  decltype(auto) Visit(Visitor&& visit) const {
    switch (kind) {
      case ValueKind::Bool:
        return visit(number.truth);
      case ValueKind::Signed:
        return visit(number.whole);
      case ValueKind::Unsigned:
        return visit(number.natural);
      case ValueKind::Double:
        return visit(number.real);
      case ValueKind::Text:
        return visit(text);
      default:
        return visit(std::monostate());
    }
  }
  /// Returns the text that TextConverter shows for the content. Nothing is the empty text.
  [[nodiscard]] DATABINDING_API VtrString ToText() const;

  /// Tells whether both hold the same of one kind. As numbers do, a NaN differs from itself.
  friend bool operator==(const Value& left, const Value& right) {
    return left.kind == right.kind && left.Visit([&]<class T>(const T& content) {
      if constexpr (std::same_as<T, std::monostate>) {
        return true;
      } else {
        return content == *right.Get<T>();
      }
    });
  }
  /// Writes the text as UTF-8.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const Value& value) {
    return out << value.ToText();
  }

 private:
  /// These stand side by side, and not in a std::variant, since g++ keeps a plug-in loaded for good
  /// that has instances of one.
  ///@{
  union Number {
    bool truth;
    std::int64_t whole = 0;
    std::uint64_t natural;
    double real;
  };
  ValueKind kind = ValueKind::Nothing;
  Number number;
  VtrString text;
  ///@}
};

}  // namespace DataBinding

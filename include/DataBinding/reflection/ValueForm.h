// SPDX-License-Identifier: Apache-2.0
/// A form tells how a type becomes a Value and a text, and how it is made of them again.
///
/// These types have one: bool, the numbers except long double, VtrString, and enumerations with a
/// table of names, which stands beside the enumeration. All other types get one by a specialisation
/// of ValueForm. Whatever has no form can be passed through these functions all the same: it
/// becomes nothing, and its text is its type's name in angle brackets.
///
///   enum class Mode { Idle, Busy };
///   constexpr auto NamesOf(const Mode*) {
///     return EnumNames<Mode>({{Mode::Idle, L"Idle"}, {Mode::Busy, L"Busy"}});
///   }
///
///   ToValue(Mode::Busy) == L"Busy"; ToText(0.25); FromValue<int>(3.0); FromText<Mode>(L"Idle");
///
/// A number converts to another type of number where nothing is lost. To float and double the
/// nearest value counts, but whole numbers convert only as long as the type has all of them: up to
/// 2^53 for double, 2^24 for float. Truth values, numbers and texts do not convert to each other,
/// except by the functions for texts.
#pragma once

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/StringView.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"
#include "DataBinding/reflection/Value.h"
#include "DataBinding/reflection/details/NumberText.h"

namespace DataBinding {

/// ValueForm<T> is the form of T. The primary template stands for types that have none.
///
/// A specialisation has three static members: `kind` is the ValueKind that values of the type have,
/// `ToValue(const T&)` returns the Value, and `FromValue(const Value&)` returns a PropertyValue<T>,
/// with PropertyError::WrongType and any text where the Value does not fit, or
/// PropertyError::Refused and a reason for people where it fits but is none of the type's values.
/// It may have `ToText(const T&)` and `FromText(const VtrString&)`, too; otherwise the text is that
/// of the Value. Write it in the header of the type, so that the whole program uses one form.
///
///   template <>
///   struct DataBinding::ValueForm<Celsius> {
///     static constexpr auto kind = ValueKind::Double;
///     static Value ToValue(const Celsius& heat) { return heat.degrees; }
///     static PropertyValue<Celsius> FromValue(const Value& value) {
///       const auto degrees = DataBinding::FromValue<double>(value);
///       if (!degrees) return {{}, degrees.error, degrees.text};
///       return {Celsius{*degrees}, PropertyError::None, {}};
///     }
///   };
template <class T>
struct ValueForm {};

/// Types with a form.
template <class T>
concept HasValueForm = requires(const T& object, const Value& value) {
  { ValueForm<T>::kind } -> std::convertible_to<ValueKind>;
  { ValueForm<T>::ToValue(object) } -> std::same_as<Value>;
  { ValueForm<T>::FromValue(value) } -> std::same_as<PropertyValue<T>>;
};

/// A row in the table of an enumeration's names.
template <class T>
struct EnumName {
  /// One of the enumeration's values.
  T value;
  /// A text that lives as long as the program.
  const wchar_t* name;
};

/// Makes the table of an enumeration's names. Of two names of one value the first is shown, and
/// both are read.
template <class T, std::size_t Size>
[[nodiscard]] constexpr std::array<EnumName<T>, Size> EnumNames(const EnumName<T> (&rows)[Size]) {
  return std::to_array(rows);
}

namespace details {

/// Enumerations with a table of names, which is found by argument-dependent look-up.
template <class T>
concept NamedEnum = std::is_enum_v<T> && requires {
  { NamesOf(static_cast<const T*>(nullptr)).begin()->name } -> std::convertible_to<VtrStringView>;
};

/// Explains why a value does not become one of the wanted type. A long text is quoted in part.
[[nodiscard]] DATABINDING_API VtrString ExplainMisfit(const Value& value,
                                                      const runtime_type_base& wanted);
/// Returns what is shown for a value of a type without a form: "<Color>".
[[nodiscard]] DATABINDING_API VtrString ShowFormless(const runtime_type_base& type);
/// Explains that a type has no form.
[[nodiscard]] DATABINDING_API VtrString ExplainFormless(const runtime_type_base& type);

template <class T>
[[nodiscard]] PropertyValue<T> Misfit(const Value& value) {
  return {{}, PropertyError::WrongType, ExplainMisfit(value, runtime_type<T>::Get())};
}

template <ValueNumber T>
[[nodiscard]] bool IsWhole(T number) noexcept {
  if constexpr (std::floating_point<T>) return std::trunc(number) == number;
  return true;
}

/// Converts one number to another type and says whether it could. A -0.0 is the whole number 0.
template <ValueNumber To, ValueNumber From>
[[nodiscard]] bool ConvertNumber(From from, To& to) noexcept {
  if constexpr (std::integral<To> && std::integral<From>) {
    if (!std::in_range<To>(from)) return false;
  } else if constexpr (std::integral<To>) {
    // The bounds are powers of two, so they are exact. A NaN is not within them.
    constexpr double end =
        2.0 * static_cast<double>(To{1} << (std::numeric_limits<To>::digits - 1));
    constexpr double begin = std::is_signed_v<To> ? -end : 0.0;
    if (!(from >= begin && from < end) || !IsWhole(from)) return false;
  } else if constexpr (std::integral<From>) {
    constexpr auto end = std::int64_t{1} << std::numeric_limits<To>::digits;
    if (std::cmp_greater(from, end) || std::cmp_less(from, -end)) return false;
  } else if constexpr (sizeof(To) < sizeof(From)) {
    constexpr auto most = static_cast<From>(std::numeric_limits<To>::max());
    if (std::isfinite(from) && std::abs(from) > most) return false;
  }
  to = static_cast<To>(from);
  return true;
}

/// Converts a number to the nearest one of another type, and a NaN to 0 where it has none.
template <ValueNumber To, ValueNumber From>
[[nodiscard]] To NearestNumber(const From& from) noexcept {
  To to{};
  if (ConvertNumber(from, to)) return to;
  if constexpr (std::floating_point<From> && std::integral<To>) {
    if (std::isnan(from) || ConvertNumber(std::round(from), to)) return to;
  } else if constexpr (std::integral<From> && std::floating_point<To>) {
    return static_cast<To>(from);
  }
  return from < From{} ? std::numeric_limits<To>::lowest() : std::numeric_limits<To>::max();
}

/// Converts a value's content to a number, if it is one.
template <ValueNumber To>
struct NumberReader {
  template <class From>
  bool operator()(const From& from) const noexcept {
    if constexpr (ValueNumber<From>) return ConvertNumber(from, to);
    return false;
  }

  To& to;
};

/// Reads a text as a value of a kind, for a type whose name stands in the text that refuses others.
[[nodiscard]] DATABINDING_API PropertyValue<Value> ParseValue(ValueKind kind, const VtrString& text,
                                                              const runtime_type_base& wanted);

/// The form of types that a Value holds as they are.
template <class T, ValueKind ItsKind>
struct PlainForm {
  static constexpr ValueKind kind = ItsKind;
  static Value ToValue(const T& content) noexcept { return content; }
  static PropertyValue<T> FromValue(const Value& value) {
    if (const T* content = value.Get<T>()) return {*content, PropertyError::None, {}};
    return Misfit<T>(value);
  }
};

template <ValueNumber T>
struct NumberForm {
  static constexpr ValueKind kind = std::floating_point<T> ? ValueKind::Double
                                    : std::is_signed_v<T>  ? ValueKind::Signed
                                                           : ValueKind::Unsigned;
  static Value ToValue(const T& number) noexcept { return number; }
  static PropertyValue<T> FromValue(const Value& value) {
    T number{};
    if (!value.Visit(NumberReader<T>{number})) return Misfit<T>(value);
    return {number, PropertyError::None, {}};
  }
  static VtrString ToText(const T& number) { return ShowNumber(number); }
  static PropertyValue<T> FromText(const VtrString& text) { return ParseNumber<T>(text); }
};

/// A value of the enumeration that has no name becomes its number, which no form reads.
template <NamedEnum T>
struct EnumForm {
  static constexpr ValueKind kind = ValueKind::Text;
  static Value ToValue(const T& value) {
    for (const auto& row : NamesOf(static_cast<const T*>(nullptr))) {
      if (row.value == value) return row.name;
    }
    return DataBinding::Value(+static_cast<std::underlying_type_t<T>>(value));
  }
  static PropertyValue<T> FromValue(const Value& value) {
    if (const auto* name = value.Get<VtrString>()) {
      for (const auto& row : NamesOf(static_cast<const T*>(nullptr))) {
        if (*name == row.name) return {row.value, PropertyError::None, {}};
      }
      return {{}, PropertyError::Refused, ExplainUnfit(*name, {}, runtime_type<T>::Get())};
    }
    return Misfit<T>(value);
  }
};

}  // namespace details

template <>
struct ValueForm<bool> : details::PlainForm<bool, ValueKind::Bool> {};

template <>
struct ValueForm<VtrString> : details::PlainForm<VtrString, ValueKind::Text> {};

template <details::ValueNumber T>
struct ValueForm<T> : details::NumberForm<T> {};

template <details::NamedEnum T>
struct ValueForm<T> : details::EnumForm<T> {};

/// Returns the Value of an object, or nothing if its type has no form. Numbers allocate nothing.
template <class T>
[[nodiscard]] Value ToValue([[maybe_unused]] const T& object) {
  if constexpr (HasValueForm<T>) return ValueForm<T>::ToValue(object);
  return {};
}

/// Makes an object of a Value. Where that does not fit, or T has no form, the error is WrongType
/// and the text names the types. A name that an enumeration does not have is Refused.
template <class T>
[[nodiscard]] PropertyValue<T> FromValue([[maybe_unused]] const Value& value) {
  if constexpr (HasValueForm<T>) {
    PropertyValue<T> made = ValueForm<T>::FromValue(value);
    // A form that is made of another one names the type of that one.
    if (made.error == PropertyError::WrongType) return details::Misfit<T>(value);
    return made;
  } else {
    return {{}, PropertyError::WrongType, details::ExplainFormless(runtime_type<T>::Get())};
  }
}

/// Returns the text of an object, or its type's name in angle brackets if the type has no form. The
/// text is the same in every locale.
template <class T>
[[nodiscard]] VtrString ToText([[maybe_unused]] const T& object) {
  if constexpr (requires { ValueForm<T>::ToText(object); }) {
    return ValueForm<T>::ToText(object);
  } else if constexpr (HasValueForm<T>) {
    return ValueForm<T>::ToValue(object).ToText();
  } else {
    return details::ShowFormless(runtime_type<T>::Get());
  }
}

/// Makes an object of a text, as TextConverter does. A text that does not convert is Refused with
/// an explanation for people; without a form, the error is WrongType.
template <class T>
[[nodiscard]] PropertyValue<T> FromText(const VtrString& text) {
  if constexpr (requires { ValueForm<T>::FromText(text); }) {
    return ValueForm<T>::FromText(text);
  } else if constexpr (HasValueForm<T>) {
    const auto& type = runtime_type<T>::Get();
    const auto value = details::ParseValue(ValueForm<T>::kind, text, type);
    if (!value) return {{}, value.error, value.text};
    auto made = ValueForm<T>::FromValue(*value);
    if (made || made.error == PropertyError::Refused) return made;
    return {{}, PropertyError::Refused, details::ExplainUnfit(text, {}, type)};
  } else {
    return {{}, PropertyError::WrongType, details::ExplainFormless(runtime_type<T>::Get())};
  }
}

}  // namespace DataBinding

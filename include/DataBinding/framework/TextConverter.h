// SPDX-License-Identifier: Apache-2.0
/// A Converter converts between a bind's values and what a widget shows.
///
/// It is a pair of functions and is copied with them. TextConverter<T> makes the converter between
/// numbers, truth values or strings and text. It is the same in every locale, and strict: a text
/// counts only if all of it is the value, and the value is finite. A number that is too small for
/// its type is read as 0. A text that does not convert is refused with an explanation for people.
///
///   const auto converter = TextConverter<double>();
///   converter.show(0.25);                 // L"0.25"
///   converter.parse(L"0.25 GiB").text;    // L"\"0.25 GiB\" is not a value of type double."
#pragma once

#include <charconv>
#include <cmath>
#include <concepts>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding {

/// A Converter tells how a widget shows a T as a W, and which T a W stands for that the user has
/// made.
template <class T, class W>
struct Converter {
  /// Answers what the widget shows for a value.
  RepeatingCallback<W(const T&)> show;
  /// Answers the value that a W stands for, or why it stands for none.
  RepeatingCallback<PropertyValue<T>(const W&)> parse;
};

/// Makes the converter for widgets that show the value as it is.
template <class T>
[[nodiscard]] Converter<T, T> SameValue() {
  return {[](const T& value) { return value; },
          [](const T& shown) {
            return PropertyValue<T>{shown, PropertyError::None, {}};
          }};
}

namespace details {

/// Types of numbers include std::int8_t and std::uint8_t, but not the types of characters.
template <class T>
concept Number = std::is_arithmetic_v<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
                 !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
                 !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

/// Tells a number that is too small for its type from one that is too big.
[[nodiscard]] DATABINDING_API bool IsNearZero(std::string_view number);

/// Explains why a text is refused. A long text is quoted in part.
[[nodiscard]] DATABINDING_API VtrString ExplainUnfit(const VtrString& text, std::errc reason,
                                                     const runtime_type_base& wanted);

/// Reads a truth value or a number. Either all of the text is the value, or nothing is read.
template <class T>
std::errc ParseAll(std::string_view text, T& value) {
  if constexpr (std::same_as<T, bool>) {
    value = text == "true";
    return value || text == "false" ? std::errc() : std::errc::invalid_argument;
  } else {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (stop != end) return std::errc::invalid_argument;
    if constexpr (std::floating_point<T>) {
      if (error == std::errc() && !std::isfinite(value)) return std::errc::invalid_argument;
      if (error == std::errc::result_out_of_range && IsNearZero(text)) return std::errc();
    }
    return error;
  }
}

template <class T>
VtrString ShowNumber(const T& value) {
  if constexpr (std::same_as<T, bool>) {
    return value ? L"true" : L"false";
  } else {
    char digits[128];
    const auto written = std::to_chars(digits, digits + sizeof digits, value);
    return VtrString::FromUtf8({digits, static_cast<std::size_t>(written.ptr - digits)});
  }
}

template <class T>
PropertyValue<T> ParseNumber(const VtrString& text) {
  T value{};
  const std::errc error = ParseAll(std::string_view(text.ToUtf8()), value);
  if (error == std::errc()) return {value, PropertyError::None, {}};
  return {{}, PropertyError::Refused, ExplainUnfit(text, error, runtime_type<T>::Get())};
}

}  // namespace details

/// Makes the converter between a T and its text. A number is shown with the fewest digits that give
/// it back, a truth value as "true" or "false", and a string as itself.
template <class T>
requires details::Number<T> || std::same_as<T, bool> || std::same_as<T, VtrString>
[[nodiscard]] Converter<T, VtrString> TextConverter() {
  if constexpr (std::same_as<T, VtrString>) {
    return SameValue<VtrString>();
  } else {
    return {&details::ShowNumber<T>, &details::ParseNumber<T>};
  }
}

}  // namespace DataBinding

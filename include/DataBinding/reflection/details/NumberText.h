// SPDX-License-Identifier: Apache-2.0
/// These functions turn numbers and truth values into text and back, in the same way in every
/// locale. They are strict: a text counts only if all of it is the value, and the value is finite.
/// A number that is too small for its type is read as 0.
///
/// TextConverter and the forms of types (ValueForm.h) are made of them, so that a widget, a file
/// and a Value have one text for one number.
#pragma once

#include <charconv>
#include <cmath>
#include <concepts>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding::details {

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

/// Reads a value of type T for a type whose name stands in the text that refuses others.
template <class T>
PropertyValue<T> ParseNumberFor(const VtrString& text, const runtime_type_base& wanted) {
  T value{};
  const std::errc error = ParseAll(std::string_view(text.ToUtf8()), value);
  if (error == std::errc()) return {value, PropertyError::None, {}};
  return {{}, PropertyError::Refused, ExplainUnfit(text, error, wanted)};
}

template <class T>
PropertyValue<T> ParseNumber(const VtrString& text) {
  return ParseNumberFor<T>(text, runtime_type<T>::Get());
}

}  // namespace DataBinding::details

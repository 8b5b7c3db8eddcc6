// SPDX-License-Identifier: Apache-2.0
/// These functions turn numbers and truth values into text and back, in the same way in every
/// locale. They are strict: a text counts only if all of it is the value, and the value is finite.
/// A number that is too small for its type is read as 0.
///
/// TextConverter and the forms of types (ValueForm.h) are made of them, so that a widget, a file
/// and a Value have one text for one number.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

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

/// Explains why a text is refused. A long text is quoted in part.
[[nodiscard]] DATABINDING_API VtrString ExplainUnfit(const VtrString& text, std::errc reason,
                                                     const runtime_type_base& wanted);

/// These write a number, and read one that is all of a text. They are compiled in the library only:
/// g++ keeps a plug-in loaded for good that has instances of std::to_chars or std::from_chars.
///@{
[[nodiscard]] DATABINDING_API VtrString WriteDigits(std::int64_t number);
[[nodiscard]] DATABINDING_API VtrString WriteDigits(std::uint64_t number);
[[nodiscard]] DATABINDING_API VtrString WriteDigits(float number);
[[nodiscard]] DATABINDING_API VtrString WriteDigits(double number);
[[nodiscard]] DATABINDING_API VtrString WriteDigits(long double number);
DATABINDING_API std::errc ReadDigits(std::string_view text, std::int64_t& number);
DATABINDING_API std::errc ReadDigits(std::string_view text, std::uint64_t& number);
DATABINDING_API std::errc ReadDigits(std::string_view text, float& number);
DATABINDING_API std::errc ReadDigits(std::string_view text, double& number);
DATABINDING_API std::errc ReadDigits(std::string_view text, long double& number);
///@}

/// The type in which a number of type T is written and read.
template <Number T>
using Written =
    std::conditional_t<std::floating_point<T>, T,
                       std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>;

/// Reads a truth value or a number. Either all of the text is the value, or nothing is read.
template <class T>
std::errc ParseAll(std::string_view text, T& value) {
  if constexpr (std::same_as<T, bool>) {
    value = text == "true";
    return value || text == "false" ? std::errc() : std::errc::invalid_argument;
  } else {
    Written<T> read{};
    const std::errc error = ReadDigits(text, read);
    if (error != std::errc()) return error;
    if constexpr (std::integral<T>) {
      if (!std::in_range<T>(read)) return std::errc::result_out_of_range;
    }
    value = static_cast<T>(read);
    return {};
  }
}

template <class T>
VtrString ShowNumber(const T& value) {
  if constexpr (std::same_as<T, bool>) {
    return value ? L"true" : L"false";
  } else {
    return WriteDigits(static_cast<Written<T>>(value));
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

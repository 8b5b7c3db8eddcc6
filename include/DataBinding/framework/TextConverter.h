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

#include <concepts>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/details/NumberText.h"

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

// SPDX-License-Identifier: Apache-2.0
/// LocaleConverter<T> makes the converter between numbers and text as the user's country writes
/// them: "1.234,5" where TextConverter shows "1234.5".
///
/// A number is shown with the fewest digits that give it back, in the locale's groups. When it is
/// read, it is all in groups or not at all, so that "1.5" is refused, and not taken for 15, where a
/// point separates groups. A space of any width stands for another one. Whatever is kept or sent is
/// written by TextConverter, which is the same in every locale.
///
///   const auto converter = LocaleConverter<double>();
///   converter.parse(L"0,25").text;
#pragma once

#include <locale>
#include <string_view>
#include <system_error>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/TextConverter.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"
#include "DataBinding/reflection/details/NumberText.h"

namespace DataBinding {

/// Returns the locale that the user has chosen in the system. Where that is not installed it is the
/// classic one, which writes numbers as TextConverter does.
[[nodiscard]] DATABINDING_API std::locale UserLocale();

namespace details {

/// Writes the text of a number as a locale does.
[[nodiscard]] DATABINDING_API VtrString ToLocale(const VtrString& number,
                                                 const std::locale& locale);
/// Returns the text that ToLocale was given, as UTF-8. Where the locale does not write a number in
/// this way, the result is no number either.
[[nodiscard]] DATABINDING_API std::string FromLocale(const VtrString& text,
                                                     const std::locale& locale);

}  // namespace details

/// Makes the converter. It keeps a copy of the locale, so it does not change when the program's
/// locale does.
template <details::Number T>
[[nodiscard]] Converter<T, VtrString> LocaleConverter(const std::locale& locale = UserLocale()) {
  return {
      [locale](const T& number) { return details::ToLocale(details::ShowNumber(number), locale); },
      [locale](const VtrString& text) -> PropertyValue<T> {
        T number{};
        const auto plain = details::FromLocale(text, locale);
        const std::errc error = details::ParseAll(std::string_view(plain), number);
        if (error == std::errc()) return {number, PropertyError::None, {}};
        return {
            {}, PropertyError::Refused, details::ExplainUnfit(text, error, runtime_type<T>::Get())};
      }};
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
// This file translates the texts of numbers between the form that is the same everywhere and that
// of a locale: the decimal point, and the separators of groups.

#include "DataBinding/framework/LocaleConverter.h"

#include <algorithm>
#include <climits>
#include <string>

namespace DataBinding::details {

namespace {

/// The marks that a locale puts into numbers.
struct Marks {
  explicit Marks(const std::locale& locale)
      : facet(std::use_facet<std::numpunct<wchar_t>>(locale)),
        point(facet.decimal_point()),
        separator(Spaceless(facet.thousands_sep())),
        grouping(point == separator ? std::string() : facet.grouping()) {}

  /// Makes one character of all spaces that separate groups: users type the plain one.
  static wchar_t Spaceless(wchar_t character) {
    constexpr std::wstring_view others = L"\u00A0\u202F\u205F\u3000";
    const bool isOfSomeWidth = character >= L'\u2000' && character <= L'\u200A';
    return isOfSomeWidth || others.find(character) != others.npos ? L' ' : character;
  }

  const std::numpunct<wchar_t>& facet;
  wchar_t point;
  wchar_t separator;
  std::string grouping;
};

/// The parts of a number: its sign, the digits before the decimal point, and the rest.
struct Parts {
  Parts(std::wstring_view number, wchar_t point) {
    const std::size_t begin = number.starts_with(L'-') ? 1 : 0;
    const wchar_t ends[] = {point, L'e', L'E', L'\0'};
    const std::size_t length = std::min(number.find_first_of(ends), number.size());
    sign = number.substr(0, begin);
    whole = number.substr(begin, length - std::min(begin, length));
    rest = number.substr(length);
  }

  std::wstring_view sign;
  std::wstring_view whole;
  std::wstring_view rest;
};

/// Puts separators between digits. The last size of a group counts for all that follow.
std::wstring Group(std::wstring_view digits, const std::string& grouping, wchar_t separator) {
  std::wstring grouped(digits);
  std::size_t left = digits.size();
  for (std::size_t i = 0; !grouping.empty(); ++i) {
    const std::size_t size = static_cast<unsigned char>(grouping[std::min(i, grouping.size() - 1)]);
    // The largest char, and any that is not positive, ends the groups.
    if (size == 0 || size >= SCHAR_MAX || left <= size) break;
    left -= size;
    grouped.insert(left, 1, separator);
  }
  return grouped;
}

}  // namespace

VtrString ToLocale(const VtrString& number, const std::locale& locale) {
  const Marks marks(locale);
  const Parts parts(number, L'.');
  std::wstring rest(parts.rest);
  if (rest.starts_with(L'.')) rest.front() = marks.point;
  const bool isFinite = parts.whole.find_first_not_of(L"0123456789") == std::wstring_view::npos;
  const auto whole = isFinite ? Group(parts.whole, marks.grouping, marks.facet.thousands_sep())
                              : std::wstring(parts.whole);
  return VtrString(std::wstring(parts.sign) + whole + rest);
}

std::string FromLocale(const VtrString& text, const std::locale& locale) {
  const Marks marks(locale);
  const Parts parts(text, marks.point);
  std::wstring typed(parts.whole);
  std::ranges::transform(typed, typed.begin(), &Marks::Spaceless);
  std::wstring digits = typed;
  std::erase(digits, marks.separator);
  if (typed != digits && typed != Group(digits, marks.grouping, marks.separator)) return {};
  std::wstring rest(parts.rest);
  // A point that is none here must not become one.
  if ((digits + rest).find(L'.') != std::wstring::npos && marks.point != L'.') return {};
  if (rest.starts_with(marks.point)) rest.front() = L'.';
  return VtrString(std::wstring(parts.sign) + digits + rest).ToUtf8();
}

}  // namespace DataBinding::details

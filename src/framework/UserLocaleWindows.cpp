// SPDX-License-Identifier: Apache-2.0
// The C++ library does not know the user's locale on every compiler for Windows, so the system is
// asked for it.

#include <windows.h>

#include <array>
#include <climits>
#include <string>
#include <string_view>

#include "DataBinding/framework/LocaleConverter.h"

namespace DataBinding {

namespace {

std::wstring Ask(LCTYPE what) {
  std::array<wchar_t, 32> text{};
  const int length =
      GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, what, text.data(), static_cast<int>(text.size()));
  return length > 1 ? std::wstring(text.data(), static_cast<std::size_t>(length - 1)) : L"";
}

/// Translates "3;2;0", where 0 says that the last size repeats, into sizes of which the last one
/// repeats by itself.
std::string SizesOfGroups(std::wstring_view sizes) {
  std::string grouping;
  for (const wchar_t size : sizes) {
    if (size > L'0' && size <= L'9') grouping += static_cast<char>(size - L'0');
  }
  if (!grouping.empty() && !sizes.ends_with(L'0')) grouping += static_cast<char>(CHAR_MAX);
  return grouping;
}

class UserMarks : public std::numpunct<wchar_t> {
 protected:
  [[nodiscard]] wchar_t do_decimal_point() const override { return Mark(LOCALE_SDECIMAL, L'.'); }
  [[nodiscard]] wchar_t do_thousands_sep() const override { return Mark(LOCALE_STHOUSAND, L','); }
  /// A user who has chosen no separator, or a longer one, sees no groups.
  [[nodiscard]] std::string do_grouping() const override {
    if (Ask(LOCALE_STHOUSAND).size() != 1) return {};
    return SizesOfGroups(Ask(LOCALE_SGROUPING));
  }

 private:
  static wchar_t Mark(LCTYPE what, wchar_t otherwise) {
    const std::wstring mark = Ask(what);
    return mark.size() == 1 ? mark.front() : otherwise;
  }
};

}  // namespace

std::locale UserLocale() { return {std::locale::classic(), new UserMarks}; }

}  // namespace DataBinding

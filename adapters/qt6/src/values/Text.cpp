// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/values/Text.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace DataBinding::Qt6 {

namespace {

bool IsOneUnit(wchar_t character) {
  const auto code = static_cast<char32_t>(character);
  return code < 0xD800 || (code > 0xDFFF && code < 0x10000);
}

}  // namespace

// QString::fromWCharArray takes ten times as long for 32-bit characters, since it goes by way of a
// decoder. Most texts have characters of one unit only.
QString ToQString(const VtrString& text) {
  const std::wstring_view characters = text;
  const auto size = static_cast<qsizetype>(characters.size());
  if (!std::all_of(characters.begin(), characters.end(), IsOneUnit)) {
    return QString::fromWCharArray(characters.data(), size);
  }
  QString made(size, Qt::Uninitialized);
  std::transform(characters.begin(), characters.end(), made.data(),
                 [](wchar_t character) { return QChar(static_cast<char16_t>(character)); });
  return made;
}

VtrString ToVtrString(QStringView text) {
  std::wstring characters(static_cast<std::size_t>(text.size()), L'\0');
  const qsizetype size = text.toWCharArray(characters.data());
  return VtrString(std::wstring_view(characters).substr(0, static_cast<std::size_t>(size)));
}

}  // namespace DataBinding::Qt6

namespace VtrPlatform {

QDebug operator<<(QDebug out, const VtrStringT<wchar_t>& text) {
  return out << DataBinding::Qt6::ToQString(text);
}

}  // namespace VtrPlatform

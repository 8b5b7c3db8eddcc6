// SPDX-License-Identifier: Apache-2.0
/// Checks formatting: any format with a number, a text and a real number must be safe, and a single
/// conversion must give what the C library gives.
#include <array>
#include <regex>
#include <stdexcept>

#include "Fuzz.h"

namespace Fuzz {

namespace {

template <class Argument>
void CheckConversion(const std::wsmatch& parts, const wchar_t* modifier, Argument argument) {
  std::array<wchar_t, 2000> text{};
  const std::wstring format = parts.str(1) + modifier + parts.str(2) + parts.str(3);
  Expect(std::swprintf(text.data(), text.size(), format.c_str(), argument) >= 0, "it is a format");
  Expect(VtrString().Format(parts.str(0).c_str(), argument) == text.data(), "formats as in C");
}

void CheckSingle(const std::wstring& format, long long number, const wchar_t* text, double real) {
  static const std::wregex one(
      L"([^%]*%[-+ #0]*\\d{0,2}(?:\\.\\d{0,2})?)([diuoxXsfFeEgGaA])([^%]*)");
  std::wsmatch parts;
  if (!std::regex_match(format, parts, one)) return;
  if (parts.str(2) == L"s") return CheckConversion(parts, L"l", text);
  if (parts.str(2).find_first_of(L"diuoxX") == 0) return CheckConversion(parts, L"ll", number);
  CheckConversion(parts, L"", real);
}

}  // namespace

void CheckInput(std::string_view input) {
  const VtrString format = VtrString::FromUtf8(TakeLine(input).substr(0, 64));
  const std::string numbers(TakeLine(input).substr(0, 40));
  const long long number = std::strtoll(numbers.c_str(), nullptr, 0);
  const double real = std::strtod(numbers.c_str(), nullptr);
  const VtrString text = VtrString::FromUtf8(input.substr(0, 64));
  const bool isPlain = std::wstring_view(format).find(L'%') == std::wstring_view::npos;
  VtrString made = text;
  try {
    made.Format(format, number, text, real);
    Expect(!isPlain || made == format, "a text without conversions stays as it is");
  } catch (const std::invalid_argument&) {
    Expect(!isPlain && made == text, "a bad conversion is refused and changes nothing");
  }
  CheckSingle(static_cast<const wchar_t*>(format), number, text, real);
}

}  // namespace Fuzz

// SPDX-License-Identifier: Apache-2.0
// This file holds VtrString::Format: it takes a format apart, checks each conversion against its
// argument, and leaves the writing of numbers to snprintf, but not their decimal points: those
// follow the C locale there.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

#include "DataBinding/foundation/String.h"

namespace VtrPlatform::details {

namespace {

/// Larger widths and precisions are refused, because they are mistakes and could exhaust the
/// memory.
constexpr int largestField = 65535;

[[noreturn]] void Refuse(const char* reason) {
  throw std::invalid_argument(std::string("format string: ") + reason);
}

/// A Conversion holds the parts of one conversion: `%-08.3f` has the flags "-0", width 8, precision
/// 3 and type f.
struct Conversion {
  std::string flags;
  int width = 0;
  int precision = -1;
  wchar_t type = L'\0';

  [[nodiscard]] bool LeftAligned() const { return flags.find('-') != std::string::npos; }
};

/// Goes through a format and appends its plain text, and what each conversion makes of its
/// argument.
class Formatter {
 public:
  Formatter(std::wstring_view format, std::span<const FormatArgument> given)
      : rest(format), arguments(given) {}

  std::wstring Run() {
    while (!rest.empty()) {
      const auto percent = std::min(rest.find(L'%'), rest.size());
      text += rest.substr(0, percent);
      rest.remove_prefix(percent);
      if (!rest.empty()) Convert();
    }
    return std::move(text);
  }

 private:
  void Convert() {
    rest.remove_prefix(1);
    const Conversion conversion = Parse();
    if (conversion.type == L'%') {
      text += L'%';
    } else if (conversion.type == L's') {
      Pad(conversion, Take<std::wstring_view>().substr(0, Limit(conversion)));
    } else if (conversion.type == L'c') {
      const auto character = static_cast<wchar_t>(Take<FormatArgument::Integer>().asSigned);
      Pad(conversion, std::wstring_view(&character, 1));
    } else {
      Number(conversion);
    }
  }

  Conversion Parse() {
    Conversion parsed;
    while (!rest.empty() && std::wstring_view(L"-+ #0").find(rest.front()) != rest.npos) {
      parsed.flags += static_cast<char>(Next());
    }
    parsed.width = Field();
    if (parsed.width < 0) {
      parsed.flags += '-';
      parsed.width = -parsed.width;
    }
    if (!rest.empty() && rest.front() == L'.') {
      Next();
      parsed.precision = std::max(Field(), -1);
    }
    while (!rest.empty() && std::wstring_view(L"hlLqjzt").find(rest.front()) != rest.npos) Next();
    parsed.type = Next();
    return parsed;
  }

  /// Reads a width or a precision: the next argument for `*`, otherwise the number in the format.
  int Field() {
    long long value = 0;
    if (!rest.empty() && rest.front() == L'*') {
      Next();
      value = Take<FormatArgument::Integer>().asSigned;
    } else {
      value = Digits();
    }
    if (value > largestField || value < -largestField) Refuse("field too wide");
    return static_cast<int>(value);
  }

  /// Reads a number; 0 if there are no digits. It stops at a number that is too large for a field,
  /// which the caller refuses.
  long long Digits() {
    long long value = 0;
    while (!rest.empty() && rest.front() >= L'0' && rest.front() <= L'9' && value <= largestField) {
      value = value * 10 + (Next() - L'0');
    }
    return value;
  }

  wchar_t Next() {
    if (rest.empty()) Refuse("ends within a conversion");
    const wchar_t character = rest.front();
    rest.remove_prefix(1);
    return character;
  }

  const FormatArgument::Value& TakeValue() {
    if (arguments.empty()) Refuse("more conversions than arguments");
    const auto& value = arguments.front().Get();
    arguments = arguments.subspan(1);
    return value;
  }
  template <class T>
  T Take() {
    const T* value = std::get_if<T>(&TakeValue());
    if (value == nullptr) Refuse("conversion does not fit its argument");
    return *value;
  }
  static std::size_t Limit(const Conversion& conversion) {
    return conversion.precision < 0 ? std::wstring_view::npos
                                    : static_cast<std::size_t>(conversion.precision);
  }

  void Pad(const Conversion& conversion, std::wstring_view piece) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::wstring blanks(width > piece.size() ? width - piece.size() : 0, L' ');
    if (!conversion.LeftAligned()) text += blanks;
    text += piece;
    if (conversion.LeftAligned()) text += blanks;
  }

  void Number(const Conversion& conversion) {
    const wchar_t type = conversion.type;
    if (type == L'd' || type == L'i') {
      Print(conversion, "lld", Take<FormatArgument::Integer>().asSigned);
    } else if (std::wstring_view(L"uoxX").find(type) != std::wstring_view::npos) {
      const char spelled[] = {'l', 'l', static_cast<char>(type), '\0'};
      Print(conversion, spelled, Take<FormatArgument::Integer>().asUnsigned);
    } else if (std::wstring_view(L"eEfFgGaA").find(type) != std::wstring_view::npos) {
      const char spelled[] = {static_cast<char>(type), '\0'};
      PrintFraction(conversion, spelled, Take<double>());
    } else if (type == L'p') {
      Print(conversion, "p", Take<const void*>());
    } else {
      Refuse("unknown conversion");
    }
  }

  template <class T>
  void Print(const Conversion& conversion, const char* type, T value) {
    const std::string written = Written(conversion, type, value);
    text.append(written.begin(), written.end());
  }

  /// Prints with a decimal point whatever the C locale has in its place. The C library counts that
  /// as one character of the field, even where it takes several.
  void PrintFraction(const Conversion& conversion, const char* type, double value) {
    std::string written = Written(conversion, type, value);
    const std::string_view mark = LocalMark(written);
    if (std::isfinite(value) && !mark.empty()) {
      written.replace(static_cast<std::size_t>(mark.data() - written.data()), mark.size(), ".");
    }
    text.append(written.begin(), written.end());
  }

  /// Returns what stands in a number as its decimal point, or nothing.
  static std::string_view LocalMark(std::string_view number) {
    constexpr std::string_view plain = "+- 0123456789abcdefABCDEFxXpPinIN";
    const std::size_t begin = std::min(number.find_first_not_of(plain), number.size());
    return number.substr(begin, number.find_first_of(plain, begin) - begin);
  }

  template <class T>
  static std::string Written(const Conversion& conversion, const char* type, T value) {
    const std::string format =
        "%" + conversion.flags + "*" + (conversion.precision < 0 ? "" : ".*") + type;
    const auto print = [&](char* out, std::size_t size) {
      return conversion.precision < 0
                 ? std::snprintf(out, size, format.c_str(), conversion.width, value)
                 : std::snprintf(out, size, format.c_str(), conversion.width, conversion.precision,
                                 value);
    };
    const int length = print(nullptr, 0);
    if (length < 0) Refuse("number cannot be written");
    std::string narrow(static_cast<std::size_t>(length) + 1, '\0');
    print(narrow.data(), narrow.size());
    narrow.pop_back();
    return narrow;
  }

  std::wstring_view rest;
  std::span<const FormatArgument> arguments;
  std::wstring text;
};

}  // namespace

StringBuffer* FormatBuffer(std::wstring_view format, std::span<const FormatArgument> arguments) {
  return StringBuffer::Make(Formatter(format, arguments).Run());
}

}  // namespace VtrPlatform::details

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/reflection/details/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <locale>
#include <sstream>
#include <string>

namespace DataBinding::details {

namespace {

/// Tells a number that is too small for its type from one that is too big.
bool IsNearZero(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mark);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first = std::min(mantissa.find_first_of("123456789"), mantissa.size());
  std::string_view digits = number.substr(std::min(mark + 1, number.size()));
  if (digits.starts_with('+')) digits.remove_prefix(1);
  std::int32_t exponent = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
  if (read.ec == std::errc::result_out_of_range) return digits.starts_with('-');
  // This asks whether the power of ten of the first digit is negative: 1e-400 is too small, and
  // 1e400 is too big. Both are far from 1, so that one place more or less does not matter.
  return std::int64_t{exponent} + static_cast<std::int64_t>(point) -
             static_cast<std::int64_t>(first) <
         0;
}

/// Some C++ libraries scan no `long double`. There a `double` is scanned, which tells how far the
/// number goes and whether it is one, and a stream of the classic locale reads the digits.
template <class T>
std::from_chars_result ScanByStream(const char* begin, const char* end, T& number) {
  double rough = 0;
  auto scanned = std::from_chars(begin, end, rough);
  number = rough;
  const bool isTooGreat = scanned.ec == std::errc::result_out_of_range;
  if (!isTooGreat && (scanned.ec != std::errc() || !std::isfinite(rough))) return scanned;
  std::istringstream digits(std::string(begin, scanned.ptr));
  digits.imbue(std::locale::classic());
  scanned.ec = digits >> number ? std::errc() : std::errc::result_out_of_range;
  if (scanned.ec != std::errc()) number = 0;
  return scanned;
}

template <class T>
VtrString Write(T number) {
  char digits[128];
  const auto written = std::to_chars(digits, digits + sizeof digits, number);
  return VtrString::FromUtf8({digits, static_cast<std::size_t>(written.ptr - digits)});
}

template <class T>
std::from_chars_result Scan(const char* begin, const char* end, T& number) {
  if constexpr (requires { std::from_chars(begin, end, number); }) {
    return std::from_chars(begin, end, number);
  } else {
    return ScanByStream(begin, end, number);
  }
}

template <class T>
std::errc Read(std::string_view text, T& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = Scan(text.data(), end, number);
  if (stop != end) return std::errc::invalid_argument;
  if constexpr (std::floating_point<T>) {
    if (error == std::errc() && !std::isfinite(number)) return std::errc::invalid_argument;
    if (error == std::errc::result_out_of_range && IsNearZero(text)) return std::errc();
  }
  return error;
}

}  // namespace

VtrString WriteDigits(std::int64_t number) { return Write(number); }
VtrString WriteDigits(std::uint64_t number) { return Write(number); }
VtrString WriteDigits(float number) { return Write(number); }
VtrString WriteDigits(double number) { return Write(number); }
VtrString WriteDigits(long double number) { return Write(number); }

std::errc ReadDigits(std::string_view text, std::int64_t& number) { return Read(text, number); }
std::errc ReadDigits(std::string_view text, std::uint64_t& number) { return Read(text, number); }
std::errc ReadDigits(std::string_view text, float& number) { return Read(text, number); }
std::errc ReadDigits(std::string_view text, double& number) { return Read(text, number); }
std::errc ReadDigits(std::string_view text, long double& number) { return Read(text, number); }

VtrString ExplainUnfit(const VtrString& text, std::errc reason, const runtime_type_base& wanted) {
  constexpr int most = 40;
  const VtrString type = VtrString::FromUtf8(wanted.GetTypeName());
  const auto* rest = text.GetLength() > most ? L"..." : L"";
  if (reason == std::errc::result_out_of_range) {
    return VtrString().Format(L"\"%.*s%s\" is out of the range of type %s.", most, text, rest,
                              type);
  }
  return VtrString().Format(L"\"%.*s%s\" is not a value of type %s.", most, text, rest, type);
}

}  // namespace DataBinding::details

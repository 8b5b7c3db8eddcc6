// SPDX-License-Identifier: Apache-2.0
/// Checks the conversion of texts that a user types as the value of a property.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <regex>
#include <string>

#include "DataBinding/framework/LocaleConverter.h"
#include "DataBinding/framework/TextConverter.h"
#include "Fuzz.h"

namespace Fuzz {

namespace {

template <class T>
void CheckBack(T value) {
  const auto back = TextConverter<T>().parse(TextConverter<T>().show(value));
  Expect(back && *back == value, "a shown value reads as itself");
}

/// The value of a text of the right shape, by the C library.
template <class T>
void CheckNumber(const VtrString& text, const std::regex& shape) {
  const auto read = TextConverter<T>().parse(text);
  Expect(bool(read) == read.text.IsEmpty() && read.text.GetLength() < 120, "a refusal says why");
  const std::string digits = text.ToUtf8();
  const long double meant = std::is_same_v<T, float>    ? std::strtof(digits.c_str(), nullptr)
                            : std::is_same_v<T, double> ? std::strtod(digits.c_str(), nullptr)
                                                        : std::strtold(digits.c_str(), nullptr);
  const bool fits = meant >= static_cast<long double>(std::numeric_limits<T>::lowest()) &&
                    meant <= static_cast<long double>(std::numeric_limits<T>::max());
  Expect(bool(read) == (fits && std::regex_match(digits, shape)), "numbers are read");
  Expect(!read || static_cast<long double>(*read) == meant, "a number is the one that was written");
}

/// A locale that separates groups and digits by other marks.
class Marks : public std::numpunct<wchar_t> {
  [[nodiscard]] wchar_t do_decimal_point() const override { return L','; }
  [[nodiscard]] wchar_t do_thousands_sep() const override { return L'.'; }
  [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

void CheckLocale(const VtrString& text, double any) {
  static const auto converter =
      LocaleConverter<double>(std::locale(std::locale::classic(), new Marks));
  const auto read = converter.parse(text);
  Expect(bool(read) == read.text.IsEmpty() && read.text.GetLength() < 120, "a refusal says why");
  for (const double value : {read.value.value_or(0), any}) {
    const auto back = converter.parse(converter.show(value));
    Expect(!std::isfinite(value) || (back && *back == value), "a shown value reads as itself");
  }
}

}  // namespace

void CheckInput(std::string_view input) {
  static const std::regex natural("\\d+");
  static const std::regex whole("-?\\d+");
  static const std::regex real("-?(\\d+\\.?\\d*|\\.\\d+)([eE][-+]?\\d+)?");
  const VtrString text = VtrString::FromUtf8(input.substr(0, 512));
  CheckNumber<std::int8_t>(text, whole);
  CheckNumber<std::int64_t>(text, whole);
  CheckNumber<std::uint64_t>(text, natural);
  CheckNumber<float>(text, real);
  CheckNumber<double>(text, real);
  const bool isTruth = text == L"true" || text == L"false";
  Expect(bool(TextConverter<bool>().parse(text)) == isTruth, "a truth value has two texts");
  double any = 0;
  std::memcpy(&any, input.data(), std::min(sizeof any, input.size()));
  CheckLocale(text, any);
  if (std::isfinite(any)) CheckBack(any);
  if (std::isfinite(static_cast<float>(any))) CheckBack(static_cast<float>(any));
  CheckBack(static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(any)));
}

}  // namespace Fuzz

// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <cstdint>
#include <locale>
#include <string>

#include <gtest/gtest.h>

#include "DataBinding/framework/LocaleConverter.h"
#include "DataBinding/framework/NumberConverter.h"

namespace DataBinding {
namespace {

/// The marks of a country, as a locale that need not be installed.
class Marks : public std::numpunct<wchar_t> {
 public:
  static std::locale In(wchar_t point, wchar_t separator, const std::string& groups) {
    return {std::locale::classic(), new Marks(point, separator, groups)};
  }

 private:
  Marks(wchar_t itsPoint, wchar_t itsSeparator, std::string itsGroups)
      : point(itsPoint), separator(itsSeparator), groups(std::move(itsGroups)) {}
  [[nodiscard]] wchar_t do_decimal_point() const override { return point; }
  [[nodiscard]] wchar_t do_thousands_sep() const override { return separator; }
  [[nodiscard]] std::string do_grouping() const override { return groups; }

  wchar_t point;
  wchar_t separator;
  std::string groups;
};

TEST(LocaleConverter, WritesAndReadsTheMarksOfTheLocale) {
  const auto german = LocaleConverter<double>(Marks::In(L',', L'.', "\3"));
  const auto indian = LocaleConverter<std::int64_t>(Marks::In(L'.', L',', "\3\2"));
  const auto french = LocaleConverter<double>(Marks::In(L',', L'\u202F', "\3"));

  EXPECT_EQ(german.show(-1234567.25), L"-1.234.567,25");
  EXPECT_EQ(german.show(1e300), L"1e+300");
  EXPECT_EQ(german.show(-100), L"-100");
  EXPECT_EQ(indian.show(12345678), L"1,23,45,678");
  EXPECT_EQ(*german.parse(L"-1.234.567,25"), -1234567.25);
  EXPECT_EQ(*german.parse(L"1234567,25"), 1234567.25);
  EXPECT_EQ(*indian.parse(L"1,23,45,678"), 12345678);
  for (const auto* text : {L"1 234,5", L"1\u2009234,5"}) EXPECT_EQ(*french.parse(text), 1234.5);
  EXPECT_EQ(LocaleConverter<double>(Marks::In(L',', L',', "\3")).show(1234.5), L"1234,5");
  EXPECT_EQ(*LocaleConverter<int>(std::locale::classic()).parse(L"1234"), 1234);
}

TEST(LocaleConverter, TakesNoMarkForAnother) {
  const auto german = LocaleConverter<double>(Marks::In(L',', L'.', "\3"));
  const auto french = LocaleConverter<double>(Marks::In(L',', L'\u202F', "\3"));

  for (const auto* text : {L"1.5", L"12.34.567", L"1,5.0", L"1.234.5", L",", L"", L"-", L"0,25 "}) {
    EXPECT_EQ(german.parse(text).error, PropertyError::Refused) << VtrString(text);
  }
  EXPECT_EQ(french.parse(L"1.5").text, L"\"1.5\" is not a value of type double.");
}

TEST(NumberConverter, ShowsTheNearestNumberThatTheWidgetHas) {
  const auto spin = NumberConverter<double, int>();

  EXPECT_EQ(spin.show(2.6), 3);
  EXPECT_EQ(spin.show(-1e300), std::numeric_limits<int>::min());
  EXPECT_EQ(spin.show(std::nan("")), 0);
  EXPECT_EQ((NumberConverter<std::uint64_t, int>().show(1ULL << 40U)),
            std::numeric_limits<int>::max());
  EXPECT_EQ((NumberConverter<std::int64_t, float>().show((1LL << 24) + 1)), 0x1p24F);
}

TEST(NumberConverter, RefusesWhatTheTypeCannotBe) {
  const auto toByte = NumberConverter<std::uint8_t, double>();

  EXPECT_EQ(*toByte.parse(255.0), 255);
  EXPECT_EQ(toByte.parse(256.0).text, L"\"256\" is out of the range of type unsigned char.");
  EXPECT_EQ(toByte.parse(0.5).text, L"\"0.5\" is not a value of type unsigned char.");
}

}  // namespace
}  // namespace DataBinding

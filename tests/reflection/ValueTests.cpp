// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/reflection/Value.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "DataBinding/reflection/ValueForm.h"

namespace Weather {

enum class Sky : std::uint8_t { Clear, Cloudy, Stormy };
constexpr auto NamesOf(const Sky*) {
  return DataBinding::EnumNames<Sky>({{Sky::Clear, L"Clear"}, {Sky::Cloudy, L"Cloudy"}});
}

struct Heat {
  double kelvin = 0;
};
struct Cloud {};

}  // namespace Weather

template <>
struct DataBinding::ValueForm<Weather::Heat> {
  static constexpr auto kind = ValueKind::Double;
  static Value ToValue(const Weather::Heat& heat) { return heat.kelvin; }
  static PropertyValue<Weather::Heat> FromValue(const Value& value) {
    const auto kelvin = DataBinding::FromValue<double>(value);
    if (!kelvin) return {{}, kelvin.error, kelvin.text};
    if (*kelvin < 0) return {{}, PropertyError::Refused, L"colder than cold"};
    return {Weather::Heat{*kelvin}, PropertyError::None, {}};
  }
};

namespace DataBinding {
namespace {

using Weather::Cloud;
using Weather::Heat;
using Weather::Sky;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto tooBig = std::uint64_t{1} << 63;
const double infinite = std::numeric_limits<double>::infinity();

TEST(Value, WholeNumbersThatFitAreOfOneKind) {
  EXPECT_EQ(Value(7), Value(std::uint8_t{7}));
  EXPECT_EQ(Value(largest), Value(tooBig - 1));
  EXPECT_EQ(Value(tooBig).Kind(), ValueKind::Unsigned);
  EXPECT_NE(Value(1), Value(1.0));
  EXPECT_NE(Value(1), Value(true));
  EXPECT_NE(Value(), Value(L""));
  static_assert(!std::is_constructible_v<Value, int*> && !std::is_constructible_v<Value, wchar_t>);
}

TEST(Value, IsWrittenAsItsText) {
  std::ostringstream out;
  out << Value() << '|' << Value(true) << '|' << Value(-3) << '|' << Value(tooBig) << '|'
      << Value(0.1) << '|' << Value(L"\u00e9");
  EXPECT_EQ(out.str(), "|true|-3|9223372036854775808|0.1|\xc3\xa9");
}

/// Tells whether a Value converts to T, and to what.
template <class T>
::testing::AssertionResult Gives(const Value& value, T wanted) {
  const auto made = FromValue<T>(value);
  // The texts also tell 0 from -0.
  if (made && ToText(*made) == ToText(wanted)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << made;
}

TEST(ValueForm, ConvertsNumbersWhereNothingIsLost) {
  EXPECT_TRUE(Gives<int>(-0.0, 0));
  EXPECT_TRUE(Gives<std::int8_t>(-128.0, -128));
  EXPECT_TRUE(Gives<std::int64_t>(-0x1p63, std::numeric_limits<std::int64_t>::min()));
  EXPECT_TRUE(Gives<std::uint64_t>(0x1p63, tooBig));
  EXPECT_TRUE(Gives<std::uint64_t>(largest, tooBig - 1));
  EXPECT_TRUE(Gives<double>(-(std::int64_t{1} << 53), -0x1p53));
  EXPECT_TRUE(Gives<float>(1 << 24, 0x1p24F));
  EXPECT_TRUE(Gives<float>(0.1, 0.1F));
  EXPECT_TRUE(Gives<float>(-1e-300, -0.0F));
  EXPECT_TRUE(Gives<float>(infinite, std::numeric_limits<float>::infinity()));
  EXPECT_TRUE(std::isnan(*FromValue<float>(std::nan(""))));
}

TEST(ValueForm, RefusesWhatWouldBeLostAsAWrongType) {
  const auto error = [](const auto& made) { return made ? PropertyError::None : made.error; };
  constexpr auto wrong = PropertyError::WrongType;
  EXPECT_EQ(error(FromValue<std::int8_t>(128)), wrong);
  EXPECT_EQ(error(FromValue<unsigned>(-1)), wrong);
  EXPECT_EQ(error(FromValue<std::int64_t>(tooBig)), wrong);
  EXPECT_EQ(error(FromValue<std::int64_t>(0x1p63)), wrong);
  EXPECT_EQ(error(FromValue<std::uint64_t>(-1.0)), wrong);
  EXPECT_EQ(error(FromValue<int>(0.5)), wrong);
  EXPECT_EQ(error(FromValue<int>(std::nan(""))), wrong);
  EXPECT_EQ(error(FromValue<int>(infinite)), wrong);
  EXPECT_EQ(error(FromValue<double>((std::int64_t{1} << 53) + 1)), wrong);
  EXPECT_EQ(error(FromValue<float>(-(1 << 24) - 1)), wrong);
  EXPECT_EQ(error(FromValue<float>(1e39)), wrong);
  EXPECT_EQ(error(FromValue<bool>(1)), wrong);
  EXPECT_EQ(error(FromValue<int>(true)), wrong);
  EXPECT_EQ(error(FromValue<VtrString>(1)), wrong);
  EXPECT_EQ(FromValue<int>(0.5).text, L"The value \"0.5\" of type double does not fit type int.");
}

TEST(ValueForm, OfAnEnumerationIsItsNames) {
  EXPECT_EQ(ToValue(Sky::Cloudy), Value(L"Cloudy"));
  EXPECT_EQ(ToValue(Sky::Stormy), Value(2));
  EXPECT_EQ(*FromValue<Sky>(L"Clear"), Sky::Clear);
  EXPECT_EQ(FromValue<Sky>(1).error, PropertyError::WrongType);
  EXPECT_EQ(FromValue<Sky>(L"Wet").error, PropertyError::Refused);
  EXPECT_EQ(FromText<Sky>(L"Wet").text, L"\"Wet\" is not a value of type Weather::Sky.");
}

TEST(ValueForm, OfOnesOwnServesTextsToo) {
  EXPECT_EQ(ToText(Heat{280.5}), L"280.5");
  EXPECT_EQ(FromText<Heat>(L"3")->kelvin, 3);
  EXPECT_EQ(FromText<Heat>(L"-3").text, L"colder than cold");
  EXPECT_EQ(FromValue<Heat>(true).text,
            L"The value \"true\" of type bool does not fit type Weather::Heat.");
  EXPECT_EQ(FromText<Heat>(L"warm").text, L"\"warm\" is not a value of type Weather::Heat.");
}

TEST(ValueForm, ShowsTypesWithoutOneByTheirName) {
  EXPECT_EQ(ToValue(Cloud()), Value());
  EXPECT_EQ(ToText(Cloud()), L"<Weather::Cloud>");
  EXPECT_EQ(FromValue<Cloud>(1).text, L"Type Weather::Cloud has no form as a value.");
}

}  // namespace
}  // namespace DataBinding

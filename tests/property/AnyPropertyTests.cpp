// SPDX-License-Identifier: Apache-2.0
#include <cstdint>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"

namespace Paint {

struct Color {};

}  // namespace Paint

namespace DataBinding {
namespace {

class Disk : public NamedDataSource {
 public:
  Disk() : NamedDataSource(L"Disk") { MakeEventSource(L"Ejected"); }

  Property<int> size{
      this, L"Size", 4, {.validate = [](int n) { return n < 0 ? L"no size" : L""; }}};
  Property<VtrString> label{this, L"Label", L"Music"};
  Property<Paint::Color> tint{this, L"Tint"};
  ComputedProperty<std::uint8_t> half{
      this, L"Half", [this] { return static_cast<std::uint8_t>(*size / 2); }, size};
};

class AnyProperty : public testing::Test {
 protected:
  [[nodiscard]] AnyPropertyRef Find(const VtrString& name) { return {disk.get(), name}; }

  DataSourcePtr<Disk> disk = MakeDataSource<Disk>(nullptr);
  AnyPropertyRef size = Find(L"Size");
};

TEST_F(AnyProperty, IsReadByTheFormOfItsType) {
  EXPECT_EQ(*size.Read(), Value(4));
  EXPECT_EQ(*Find(L"Half").Read(), Value(2));
  EXPECT_EQ(*Find(L"Label").ReadText(), L"Music");
  EXPECT_EQ(*Find(L"Half").ReadText(), L"2");
  EXPECT_EQ(size.Kind(), ValueKind::Signed);
  EXPECT_EQ(Find(L"Half").Kind(), ValueKind::Unsigned);
  EXPECT_TRUE(Find(L"Half").IsReadOnly());
  EXPECT_EQ(*ReadProperty(disk.get(), L"Half"), Value(2));
  EXPECT_EQ(*ReadPropertyText(disk.get(), L"Tint"), L"<Paint::Color>");
}

TEST_F(AnyProperty, IsSetWithThePropertysOwnResults) {
  EXPECT_TRUE(size.Write(5.0).changed);
  EXPECT_FALSE(size.WriteText(L"5").changed);
  EXPECT_EQ(size.Write(-1).text, disk->size.Set(-1).text);
  EXPECT_EQ(size.WriteText(L"-1").reason, L"no size");
  EXPECT_EQ(Find(L"Half").Write(1).error, PropertyError::ReadOnly);
  EXPECT_EQ(*disk->size, 5);
}

TEST_F(AnyProperty, SaysWhatDoesNotConvert) {
  const auto written = size.Write(0.5);
  EXPECT_EQ(written.error, PropertyError::WrongType);
  EXPECT_EQ(
      written.text,
      L"Property \"Size\" of data source \"Disk\" does not convert: The value \"0.5\" of type "
      L"double does not fit type int.");
  const auto typed = size.WriteText(L"big");
  EXPECT_EQ(typed.error, PropertyError::Refused);
  EXPECT_EQ(typed.reason, L"\"big\" is not a value of type int.");
  EXPECT_EQ(*disk->size, 4);
}

TEST_F(AnyProperty, WithoutAFormIsNamedAndLeftOut) {
  const auto tint = Find(L"Tint");
  EXPECT_EQ(tint.Kind(), ValueKind::Nothing);
  EXPECT_EQ(*tint.ReadText(), L"<Paint::Color>");
  EXPECT_EQ(tint.Read().error, PropertyError::WrongType);
  EXPECT_EQ(tint.Write(1).text, tint.Read().text);
}

TEST_F(AnyProperty, ChecksAreAnsweredAsSettingWouldBe) {
  EXPECT_EQ(size.Check(-1).text, size.Write(-1).text);
  EXPECT_EQ(size.CheckText(L"big").text, size.WriteText(L"big").text);
  EXPECT_EQ(FindProperty<const int>(disk.get(), L"Size").Check(-1).reason, L"no size");
  EXPECT_EQ(disk->size.Check(-1).error, PropertyError::Refused);
  EXPECT_EQ(Find(L"Half").Check(1).error, PropertyError::ReadOnly);
  EXPECT_TRUE(size.Check(9).IsAccepted() && size.CheckText(L"9").IsAccepted());
  EXPECT_EQ(*disk->size, 4);
}

TEST_F(AnyProperty, IsNotAnEventNorAnUnknownName) {
  EXPECT_EQ(Find(L"Ejected").Text(),
            L"Member \"Ejected\" of data source \"Disk\" has type void () and is no property.");
  EXPECT_EQ(Find(L"Weight").Error(), PropertyError::Absent);
  EXPECT_EQ(AnyPropertyRef(nullptr, L"Size").Read().error, PropertyError::NoSource);
  disk.reset();
  EXPECT_EQ(size.Read().text, L"Property \"Size\" (wanted type any) is gone with its data source.");
  EXPECT_EQ(size.Write(1).error, PropertyError::Absent);
}

}  // namespace
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/CopyProperties.h"
#include "DataBinding/property/Property.h"

namespace DataBinding {
namespace {

struct Stay : NamedDataSource {
  Stay() : NamedDataSource(L"Stay") { begin.ValidatorReads(end); }
  /// Refuses also what a guest is called at first.
  [[nodiscard]] static VtrString NotAnger(const VtrString& name) {
    return name == L"Anger" ? L"no anger" : L"";
  }

  Property<VtrString> guest{this, L"Guest", L"Anger", {.validate = &NotAnger}};
  Property<int> begin{this, L"Begin", 1, {.validate = [this](int day) {
                        return day >= *end ? L"ends before" : L"";
                      }}};
  Property<int> end{
      this,
      L"End",
      5,
      {.validate = [this](int day) { return day <= *begin || day > 90 ? L"begins after" : L""; }},
      begin};
  Property<std::vector<int>> meals{this, L"Meals", {}, {.changed = [this](auto&, auto&) {
                                     if (isHungry) throw std::runtime_error("hungry");
                                   }}};
  ComputedProperty<int> nights{this, L"Nights", [this] { return *end - *begin; }, begin, end};
  bool isHungry = false;
};

/// A dialogue edits a Draft. It has the same names without limits, and some that do not fit.
struct Draft : NamedDataSource {
  Draft() : NamedDataSource(L"Draft") {}
  Property<VtrString> guest{this, L"Guest", L"Bob"};
  Property<int> begin{this, L"Begin", 10};
  Property<int> end{this, L"End", 20};
  Property<std::vector<int>> meals{this, L"Meals", {1, 2}};
  Property<double> nights{this, L"Nights"};
  Property<int> rest{this, L"Rest"};
};

class CopiedProperties : public testing::Test {
 protected:
  CopyResult Copy() { return CopyProperties(draft.get(), stay.get()); }
  [[nodiscard]] bool IsUntouched() const {
    return *stay->guest == L"Anger" && *stay->begin == 1 && *stay->end == 5 && stay->meals->empty();
  }

  DataSourcePtr<Draft> draft = MakeDataSource<Draft>(nullptr);
  DataSourcePtr<Stay> stay = MakeDataSource<Stay>(nullptr);
  std::string told;
  Subscription log =
      stay->RegisterAny([this](const VtrString& name) { told += name.ToUtf8() + " "; });
};

TEST_F(CopiedProperties, AreToldOfInOneBatchEvenWhenTheyLimitEachOther) {
  const CopyResult copied = Copy();

  EXPECT_TRUE(copied.changed && copied.IsAccepted()) << copied;
  EXPECT_EQ(*stay->nights, 10);
  EXPECT_EQ(*stay->meals, (std::vector{1, 2}));
  EXPECT_EQ(told, "Guest Meals End Begin Nights ");
  EXPECT_FALSE(Copy().changed);
}

TEST_F(CopiedProperties, AreOfTheSameNameAndType) {
  Property<double> guest(stay.get(), PropertyName(L"Rest"));

  const auto leftOut = Copy().leftOut;

  ASSERT_EQ(leftOut.size(), 2U);
  EXPECT_EQ(leftOut[0].result.error, PropertyError::ReadOnly);
  EXPECT_EQ(leftOut[1].result.error, PropertyError::WrongType);
  EXPECT_EQ(CopyProperties(stay.get(), draft.get()).leftOut[0].name, L"Nights");
}

TEST_F(CopiedProperties, AreNotTouchedWhenACheckRefusesOne) {
  draft->meals.Set({3});
  draft->guest.Set(L"Anger");

  const CopyResult copied = Copy();

  ASSERT_EQ(copied.refused.size(), 1U);
  EXPECT_EQ(copied.refused[0].result.reason, L"no anger");
  EXPECT_FALSE(copied.changed || copied.IsAccepted());
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(told, "");
}

TEST_F(CopiedProperties, ArePutBackWhenOneIsRefusedHalfWay) {
  draft->begin.Set(2);
  draft->end.Set(95);

  const CopyResult copied = Copy();

  EXPECT_EQ(copied.refused.at(0).name, L"End");
  EXPECT_FALSE(copied.changed || copied.IsAccepted());
  EXPECT_TRUE(IsUntouched());
}

TEST_F(CopiedProperties, ArePutBackWhenAHookThrows) {
  stay->isHungry = true;

  EXPECT_THROW(Copy(), std::runtime_error);
  EXPECT_TRUE(IsUntouched());
}

TEST_F(CopiedProperties, NeedTwoSources) {
  EXPECT_EQ(CopyProperties(nullptr, stay.get()).error, PropertyError::NoSource);
  EXPECT_EQ(CopyProperties(draft.get(), nullptr).error, PropertyError::NoSource);
}

}  // namespace
}  // namespace DataBinding

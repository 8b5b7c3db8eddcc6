// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/values/Variant.h"

#include <QDate>
#include <QSize>
#include <limits>

#include <gtest/gtest.h>

#include "DataBinding/reflection/ValueForm.h"

namespace DataBinding::Qt6 {
namespace {

TEST(QtVariant, HoldsTheSameThereAndBack) {
  const auto big = std::numeric_limits<std::uint64_t>::max();
  const Value values[] = {{}, true, 3, std::int64_t{1} << 40, big, 0.25, L"", L"\u20ac"};

  for (const Value& value : values) EXPECT_EQ(ToValue(ToVariant(value)), value) << value;
}

TEST(QtVariant, OfAWholeNumberIsAnIntWhereItFits) {
  EXPECT_EQ(ToVariant(-7).typeId(), QMetaType::Int);
  EXPECT_EQ(ToVariant(std::int64_t{1} << 31).typeId(), QMetaType::LongLong);
}

TEST(QtVariant, OfATypeWithATextBecomesThatText) {
  EXPECT_EQ(ToValue(QVariant(QDate(2024, 2, 29))), Value(L"2024-02-29"));
  EXPECT_EQ(ToValue(QVariant::fromValue(short{5})), Value(5));
  EXPECT_EQ(ToValue(QVariant(0.5F)), Value(0.5));
}

TEST(QtVariant, OfATypeWithoutATextBecomesNothing) {
  EXPECT_EQ(ToValue(QVariant(QSize(1, 2))), Value());
}

}  // namespace
}  // namespace DataBinding::Qt6

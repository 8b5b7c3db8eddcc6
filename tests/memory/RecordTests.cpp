// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "../support/Allocations.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/property/PropertyBatch.h"

namespace DataBinding::Testing {
namespace {

struct Bare : NamedDataSource {
  Bare() : NamedDataSource(L"Bare") {}
};

struct Record : NamedDataSource {
  Record() : NamedDataSource(L"Record") {}
  Property<int> number{this, L"Number"};
  Property<int> age{this, L"Age"};
  Property<double> height{this, L"Height", 1.5};
  Property<double> weight{this, L"Weight"};
  Property<bool> isActive{this, L"Active"};
  Property<VtrString> remark{this, L"Remark"};
};

struct Longer : Record {
  Property<int> visits{this, L"Visits"};
  Property<int> orders{this, L"Orders"};
};

struct Cost {
  std::int64_t bytes;
  std::int64_t blocks;
};

template <class Action>
Cost CostOf(Action action) {
  const Cost before{AllocatedBytes(), Allocations()};
  action();
  return {AllocatedBytes() - before.bytes, Allocations() - before.blocks};
}

/// Returns what one more source costs when its class has made another one before.
template <class Source>
Cost CostOfOne() {
  const auto first = MakeDataSource<Source>(nullptr);
  return CostOf([] { static_cast<void>(MakeDataSource<Source>(nullptr)); });
}

TEST(RecordMemory, KeepsOnlyWhatDiffersFromRecordToRecord) {
  const Cost record = CostOfOne<Record>();

  EXPECT_LE(record.bytes, 450);
  EXPECT_LE(record.blocks, 2);
  EXPECT_LE(CostOfOne<Longer>().bytes - record.bytes, 2 * 48);
  EXPECT_LE(CostOfOne<Bare>().bytes, 160);
}

TEST(RecordMemory, IsNotNeededToReadAndSetPropertiesByName) {
  const auto record = MakeDataSource<Record>(nullptr);
  const VtrString height = L"Height";
  const AnyPropertyRef kept(record.get(), L"Weight");
  record->UpdateListeners(L"Age");  // its first use of the listeners' registry

  const Cost cost = CostOf([&] {
    EXPECT_TRUE(kept.Write(3).changed);
    EXPECT_EQ(*kept.Read(), Value(3.0));
    EXPECT_EQ(*ReadProperty(record.get(), height), Value(1.5));
    EXPECT_EQ(*GetProperty<double>(record.get(), height), 1.5);
    EXPECT_TRUE(SetProperty(record.get(), height, 2.5).changed);
    EXPECT_EQ(*GetProperty<double>(record.get(), height), 2.5);
  });

  EXPECT_EQ(cost.blocks, 0);
}

TEST(RecordMemory, IsNotNeededToNoteAChangeInABatch) {
  const auto record = MakeDataSource<Record>(nullptr);
  static_cast<void>(record->AreListenersAvailable(L"Age"));
  std::optional<PropertyBatch> batch(*record);
  const auto late = std::make_unique<Property<int>>(record.get(), PropertyName(L"Late"));

  const Cost cost = CostOf([&] {
    record->age.Set(1);
    record->height.Set(2.5);
    late->Set(3);
  });

  EXPECT_EQ(cost.blocks, 0);
}

TEST(RecordMemory, IsNotNeededToEndAPropertyOfALivingSource) {
  const auto record = MakeDataSource<Record>(nullptr);
  auto late = std::make_unique<ReadOnlyProperty<int>>(record.get(), PropertyName(L"Late"));

  EXPECT_EQ(CostOf([&] { late.reset(); }).blocks, 0);
  EXPECT_FALSE(record->IsWritableProperty(L"Late"));
}

}  // namespace
}  // namespace DataBinding::Testing

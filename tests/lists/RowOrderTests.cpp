// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/RowOrder.h"

#include <cstdint>
#include <functional>
#include <new>
#include <numeric>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "../support/Allocations.h"

namespace DataBinding {
namespace {

using details::RowOrder;
using Ids = std::vector<RowId>;

Ids Contents(const RowOrder& order) {
  Ids ids;
  order.ForEach([&](auto some) { ids.insert(ids.end(), some.begin(), some.end()); });
  return ids;
}

Ids Numbers(RowId count) {
  Ids ids(count);
  std::iota(ids.begin(), ids.end(), RowId{0});
  return ids;
}

/// Makes random changes of a plain vector first, and then the same ones of an order.
class Script {
 public:
  Script(std::uint32_t seed, RowId ids) : random(seed), all(ids), free(Numbers(ids)) {}

  /// Changes up to `most` rows at a time, and says how often the reserved changes allocated.
  std::int64_t Change(int times, std::size_t most) {
    std::vector<std::function<void()>> changes;
    std::size_t reserved = 0;
    const bool grows = Below(2) == 0;
    for (int i = 0; i < times; ++i) {
      const std::size_t kind = Below(5);
      const std::size_t count = Below(4) == 0 ? 1 + Below(most) : 1;
      if (kind == 4) {
        changes.push_back(Move(count));
      } else {
        changes.push_back(kind < 2 || (kind == 2 && grows) ? Insert(count) : Erase(count));
      }
      reserved += count;
    }
    order.Reserve(reserved, all);
    const auto before = Testing::Allocations();
    for (const auto& change : changes) change();
    return Testing::Allocations() - before;
  }
  void Check() const {
    ASSERT_EQ(Contents(order), model);
    ASSERT_EQ(order.Size(), model.size());
    for (std::size_t i = 0; i < model.size(); ++i) {
      ASSERT_EQ(order.At(i), model[i]);
      ASSERT_EQ(order.IndexOf(model[i]), i);
    }
    for (const RowId id : free) ASSERT_TRUE(order.IndexOf(id) == RowOrder::nowhere);
  }

 private:
  using Later = std::function<void()>;
  static std::ptrdiff_t Signed(std::size_t number) { return static_cast<std::ptrdiff_t>(number); }
  std::size_t Below(std::size_t limit) { return random() % limit; }

  Later Insert(std::size_t most) {
    const std::size_t at = Below(8) == 0 ? model.size() : Below(model.size() + 1);
    const Ids ids(free.end() - Signed(std::min(most, free.size())), free.end());
    free.resize(free.size() - ids.size());
    model.insert(model.begin() + Signed(at), ids.begin(), ids.end());
    return [this, at, ids] { order.Insert(at, ids); };
  }
  Later Erase(std::size_t most) {
    const std::size_t at = Below(model.size() + 1);
    const std::size_t count = std::min(most, model.size() - at);
    const auto first = model.begin() + Signed(at);
    free.insert(free.end(), first, first + Signed(count));
    model.erase(first, first + Signed(count));
    return [this, at, count] { order.Erase(at, count); };
  }
  Later Move(std::size_t most) {
    const std::size_t from = Below(model.size() + 1);
    const std::size_t count = std::min(most, model.size() - from);
    const std::size_t to = Below(model.size() - count + 1);
    const auto at = [this](std::size_t index) { return model.begin() + Signed(index); };
    if (from < to) std::rotate(at(from), at(from + count), at(to + count));
    if (to < from) std::rotate(at(to), at(from), at(from + count));
    return [this, from, count, to] { order.Move(from, count, to); };
  }

  std::mt19937 random;
  RowId all;
  Ids model;
  Ids free;
  RowOrder order;
};

TEST(RowOrder, RandomReservedChangesMatchAVectorWithoutAllocating) {
  for (const std::size_t most : {1U, 3U, 200U, 3000U}) {
    Script script(static_cast<std::uint32_t>(most), 20'000);
    for (int round = 0; round < 80; ++round) {
      SCOPED_TRACE(testing::Message() << most << " rows, round " << round);
      ASSERT_EQ(script.Change(20, most), 0);
      if (round % 8 == 0) script.Check();
      if (HasFatalFailure()) return;
    }
  }
}

/// Inserts rows one by one, each time at the place that `where(size)` says.
template <class Where>
std::int64_t AllocationsOf(RowOrder& order, RowId count, Where where) {
  order.Reserve(count, static_cast<RowId>(order.Size()) + count);
  const auto before = Testing::Allocations();
  for (RowId id = static_cast<RowId>(order.Size()); count-- > 0; ++id) {
    order.Insert(where(order.Size()), {&id, 1});
  }
  return Testing::Allocations() - before;
}

TEST(RowOrder, ReservedRowsNeedNoMemoryHoweverUnluckilyTheyFall) {
  for (const std::size_t step :
       {std::size_t{256}, std::size_t{255}, std::size_t{1}, std::size_t{0}}) {
    RowOrder order;
    AllocationsOf(order, 40'960, [](std::size_t size) { return size; });  // each block is full

    std::size_t at = 0;
    const auto next = [&](std::size_t size) { return (at += step + 1) % size; };
    EXPECT_EQ(AllocationsOf(order, 159, next), 0) << step;
    EXPECT_EQ(AllocationsOf(order, 5'000, next), 0) << step;
  }
}

TEST(RowOrder, RowsThatAreAssignedOrAppendedTakeSevenBytesEach) {
  constexpr RowId count = 100'000;
  const auto before = Testing::AllocatedBytes();
  RowOrder assigned;
  assigned.Assign(Numbers(count));
  EXPECT_LE(Testing::AllocatedBytes() - before - std::int64_t{count} * 4, std::int64_t{count} * 7);

  RowOrder appended;
  const auto blocks = Testing::LiveAllocations();
  AllocationsOf(appended, count, [](std::size_t size) { return size; });
  EXPECT_LE(Testing::LiveAllocations() - blocks, count / 256 + count / 256 / 32 + 12);
}

TEST(RowOrder, AWornOrderTakesTenBytesARow) {
  constexpr RowId count = 40'000;
  RowOrder order;
  order.Assign(Numbers(count));
  const auto before = Testing::LiveAllocations();
  const auto fresh = count / 256;
  std::mt19937 random(7);

  for (int i = 0; i < 80'000; ++i) {
    order.Reserve(1, count);
    order.Move(random() % count, 1, random() % count);
  }

  EXPECT_LE(Testing::LiveAllocations() - before, fresh);  // so twice the blocks, of 4 bytes a row
}

TEST(RowOrder, RowsThatGoGiveTheirMemoryBack) {
  RowOrder order;
  const auto before = Testing::LiveAllocations();
  order.Assign(Numbers(100'000));
  std::mt19937 random(3);

  while (order.Size() > 1'000) order.Erase(random() % order.Size(), 1);
  order.Reserve(1, 100'000);

  EXPECT_LE(Testing::LiveAllocations() - before, 40);
}

TEST(RowOrder, FailingReservationsLeaveTheOrderAsItWas) {
  RowOrder order;
  const Ids ids = Numbers(3'000);
  order.Assign(std::span(ids).first(1'000));
  bool isDone = false;
  for (std::int64_t number = 1; !isDone; ++number) {
    const Testing::FailingAllocation failing(number);
    try {
      order.Reserve(50'000, 60'000);
      order.Assign(ids);
      isDone = true;
    } catch (const std::bad_alloc&) {
      ASSERT_EQ(order.Size(), 1'000);
      ASSERT_EQ(order.IndexOf(999), 999);
    }
  }
  EXPECT_EQ(Contents(order), ids);
  EXPECT_THROW(order.Reserve(10'000'000, 1), std::length_error);
  EXPECT_EQ(Contents(order), ids);
}

}  // namespace
}  // namespace DataBinding

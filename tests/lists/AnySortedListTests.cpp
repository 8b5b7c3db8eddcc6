// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/AnySortedList.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/SortedList.h"
#include "Processes.h"

namespace DataBinding {
namespace {

/// A number that may be missing.
struct Reading {
  bool isThere;
  double number;
};

}  // namespace

template <>
struct ValueForm<Reading> {
  static constexpr auto kind = ValueKind::Double;
  static Value ToValue(const Reading& reading) {
    return reading.isThere ? Value(reading.number) : Value();
  }
  static PropertyValue<Reading> FromValue(const Value& /*value*/) { return {}; }
};

namespace {

using Testing::Process;

struct Formless {};

struct Sample {
  int id;
  std::uint64_t big;
  Reading reading;
  Formless formless;
};
constexpr auto FieldsOf(const Sample*) {
  return Fields(Key(L"Id", &Sample::id), Field(L"Big", &Sample::big),
                Field(L"Reading", &Sample::reading), Field(L"Formless", &Sample::formless));
}

std::string IdsOf(const AnyList& list) {
  std::string text;
  for (std::size_t i = 0; i < list.Size(); ++i) text += list.Cell(i, 0).ToText().ToUtf8() + " ";
  return text;
}

class AnySortedListTest : public testing::Test {
 protected:
  AnySortedListTest() { list.Assign({{9, L"b", 10}, {10, L"B", 9}, {1, L"a", -1}, {3, L"", 10}}); }

  ListData<Process> list;
  AnySortedList shown{list};
};

TEST_F(AnySortedListTest, SortsNumbersAsNumbersAndTextsAsTexts) {
  EXPECT_EQ(IdsOf(shown), "9 10 1 3 ");
  EXPECT_TRUE(shown.SortBy(L"Id"));
  EXPECT_EQ(IdsOf(shown), "1 3 9 10 ");
  EXPECT_TRUE(shown.SortBy(L"Name", Order::Descending));
  EXPECT_EQ(IdsOf(shown), "9 1 10 3 ");
  EXPECT_TRUE(shown.SortBy(2, Order::Descending));
  EXPECT_EQ(IdsOf(shown), "9 3 10 1 ");
  EXPECT_FALSE(shown.SortBy(L"Size") || shown.SortBy(3));
  EXPECT_EQ(IdsOf(shown), "9 3 10 1 ");
  shown.KeepOrderOfList();
  EXPECT_EQ(IdsOf(shown), "9 10 1 3 ");
}

TEST(AnySortedList, HasWhatIsNoNumberAtTheEndInBothDirections) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  const auto most = std::numeric_limits<std::uint64_t>::max();
  ListData<Sample> list;
  list.Assign({{1, most, {false, 0}, {}},
               {2, 1, {true, none}, {}},
               {3, most - 1, {true, 5}, {}},
               {4, most >> 1, {true, -5}, {}}});
  AnySortedList shown(list);

  shown.SortBy(L"Reading");
  EXPECT_EQ(IdsOf(shown), "4 3 2 1 ");
  shown.SortBy(L"Reading", Order::Descending);
  EXPECT_EQ(IdsOf(shown), "3 4 2 1 ");
  shown.SortBy(L"Big");
  EXPECT_EQ(IdsOf(shown), "2 4 3 1 ");
  shown.SortBy(L"Formless", Order::Descending);
  EXPECT_EQ(IdsOf(shown), "1 2 3 4 ");
}

TEST_F(AnySortedListTest, OnlyAChangeOfTheFieldThatSortsMovesARow) {
  std::string told;
  const Subscription seen = shown.Observe({.after = [&](const ListChange& change) {
    told += change.Kind() == ListChangeKind::Changed ? "changed " : "moved ";
  }});

  list.Update(10, [](Process& process) { process.cpu = 99; });
  shown.SortBy(L"Cpu");
  list.Update(10, [](Process& process) { process.name = L"z"; });
  list.Update(9, [](Process& process) { process.cpu = 100; });

  EXPECT_EQ(told, "changed moved changed changed moved ");
  EXPECT_EQ(IdsOf(shown), "1 3 10 9 ");
}

TEST(AnySortedList, StandsAsAViewOfTheTypeDoesAfterAnyOperations) {
  std::mt19937 random(7);
  const auto below = [&](std::size_t end) { return static_cast<int>(random() % end); };
  ListData<Process> list;
  AnySortedList shown(list);
  SortedList typed(list, By(&Process::cpu, Order::Descending));
  shown.SortBy(L"Cpu", Order::Descending);
  for (int id = 0; id < 600; ++id) {
    const auto size = list.Size();
    const auto at = static_cast<std::size_t>(below(size + 1));
    list.Insert(at, Process{id, L"", below(20) * 0.5});
    if (id % 3 == 0) list.Remove(static_cast<std::size_t>(below(size + 1)));
    if (id % 50 == 0) list.Edit([&](auto& rows) { std::ranges::reverse(rows); });
    list.UpdateAt(0, [&](Process& process) { process.cpu = below(20); });
    if (id % 20 == 0) {
      ASSERT_EQ(IdsOf(shown), IdsOf(typed)) << id;
    }
  }
}

TEST_F(AnySortedListTest, MovesRowsOfItsListWhileItShowsTheOrderOfThat) {
  EXPECT_TRUE(shown.MoveRows(0, 2, 2).changed);
  EXPECT_EQ(IdsOf(shown), "1 3 9 10 ");
  EXPECT_FALSE(shown.MoveRows(0, 2, 3).IsAccepted());

  shown.SortBy(L"Cpu");
  EXPECT_FALSE(shown.CanMoveRows());
  EXPECT_EQ(shown.MoveRows(0, 1, 1).text,
            L"The rows of list \"without name\" cannot be moved here.");
  FilteredList all(list, [](const Process&) { return true; });
  EXPECT_FALSE(all.CanMoveRows() || AnySortedList(all).CanMoveRows());
  EXPECT_EQ(IdsOf(list), "1 3 9 10 ");

  const Subscription again = shown.Observe({.after = [&](const ListChange&) {
    if (IdsOf(shown) == IdsOf(list)) shown.SortBy(L"Cpu");
  }});
  shown.KeepOrderOfList();
  EXPECT_FALSE(shown.CanMoveRows()) << "an observer has sorted it again";
}

TEST(AnySortedList, StandsSortedThoughAComparisonHasMadeItsListLonger) {
  ListData<Process> list;
  list.Assign(Testing::Processes({1, 5, 3, 4, 2, 6}));
  std::vector<int> more(100);
  std::iota(more.begin(), more.end(), 7);
  bool isDue = false;
  SortedList ids(list, [&](const Process& one, const Process& other) {
    if (std::exchange(isDue, false)) list.Insert(0, Testing::Processes(more));
    return one.id < other.id;
  });
  EXPECT_EQ(IdsOf(ids), "1 2 3 4 5 6 ");
  isDue = true;
  list.Edit([](auto& rows) { std::ranges::reverse(rows); });
  EXPECT_TRUE(ids.Size() == 106 && std::ranges::is_sorted(ids, {}, &Process::id));
}

TEST_F(AnySortedListTest, SetsACellByATextAsItsFieldReadsIt) {
  EXPECT_TRUE(shown.SetCellText(1, 2, L"0.5").changed);
  EXPECT_EQ(list.Find(10)->cpu, 0.5);
  EXPECT_FALSE(shown.SetCellText(1, 2, L"much").IsAccepted());
  EXPECT_EQ(shown.SetCellText(1, 2, L"-1").reason, L"is negative");
  EXPECT_EQ(shown.SetCellText(4, 2, L"much").error, PropertyError::OutOfRange);
  EXPECT_TRUE(shown.CanSetField(2));
  EXPECT_FALSE(shown.CanSetField(1) || shown.CanSetField(3));
}

}  // namespace
}  // namespace DataBinding

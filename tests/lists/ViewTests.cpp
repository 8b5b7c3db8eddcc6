// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "../support/Allocations.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/SortedList.h"
#include "DataBinding/property/Property.h"

namespace DataBinding {
namespace {

struct Task {
  int id;
  double load;
  bool operator==(const Task&) const = default;
};
constexpr auto FieldsOf(const Task*) {
  return Fields(Key(L"Id", &Task::id), Field(L"Load", &Task::load));
}

std::vector<int> IdsOf(const ReadableList<Task>& list) {
  std::vector<int> ids;
  for (const Task& task : list) ids.push_back(task.id);
  return ids;
}

const char* NameOf(ListChangeKind kind) {
  constexpr const char* names[] = {"inserted", "removed", "moved", "changed", "reordered", "reset"};
  return names[static_cast<int>(kind)];
}

class ViewTest : public testing::Test {
 protected:
  void Follow(ReadableList<Task>& list) {
    seen = list.Observe({.after = [this](const RowChange<Task>& change) {
      told += NameOf(change.Kind()) + std::string(" ");
    }});
  }
  void Load(int id, double load) {
    tasks.Update(id, [load](Task& task) { task.load = load; });
  }

  ListData<Task> tasks;
  std::string told;
  Subscription seen;
};

TEST_F(ViewTest, FieldsOrderNumbersTotallyInBothDirections) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  tasks.Assign({{1, none}, {2, 3}, {3, 1}, {4, none}, {5, 3}, {6, -1}});
  SortedList up(tasks, By(&Task::load).Then(&Task::id, Order::Descending));
  SortedList down(tasks, By(&Task::load, Order::Descending));

  EXPECT_EQ(IdsOf(up), (std::vector{6, 3, 5, 2, 4, 1}));
  EXPECT_EQ(IdsOf(down), (std::vector{2, 5, 3, 6, 1, 4}));
}

TEST_F(ViewTest, ManyRowsStandAsComparingThemWouldHaveThem) {
  using Double = std::numeric_limits<double>;
  const double loads[] = {2.5,  -Double::infinity(),  -2.5, Double::quiet_NaN(),
                          -0.0, Double::denorm_min(), 0,    Double::infinity()};
  std::vector<Task> rows;
  for (int i = 0; i < 1000; ++i) rows.push_back({i * 7919 % 1000 - 500, loads[i % 8]});
  tasks.Assign(rows);

  const auto check = [&](const auto& order, int thrower = 1000) {
    const SortedList sorted(tasks, order);
    auto expected = rows;
    const auto thrown = std::stable_partition(expected.begin(), expected.end(),
                                              [&](const Task& task) { return task.id != thrower; });
    std::stable_sort(expected.begin(), thrown, order);
    EXPECT_TRUE(std::ranges::equal(sorted, expected, {}, &Task::id, &Task::id));
  };
  const auto idOrThrow = [](const Task& task) { return task.id == 7 ? throw task : task.id; };
  for (const Order direction : {Order::Ascending, Order::Descending}) {
    check(By(&Task::load, direction));
    check(By(&Task::id, direction));
    check(By([](const Task& task) { return float(task.load); }, direction));
    check(By([](const Task& task) { return unsigned(task.id); }, direction));
    check(By(&Task::load, direction).Then(idOrThrow), 7);
  }
}

TEST_F(ViewTest, AChangeIsToldWhereTheRowStandsAndThenItsMove) {
  tasks.Assign({{1, 1}, {2, 2}, {3, 3}});
  SortedList sorted(tasks, By(&Task::load));
  FilteredList light(sorted, [](const Task& task) { return task.load < 5; });
  Follow(light);

  Load(1, 2.5);
  Load(2, 9);
  Load(2, 0);

  EXPECT_EQ(told, "changed moved changed removed inserted moved ");
  EXPECT_EQ(IdsOf(light), (std::vector{2, 1, 3}));
}

TEST_F(ViewTest, ManyMovesAreToldAsOneNewOrder) {
  for (int id = 0; id < 1000; ++id) tasks.Insert(0, {id, double(id)});
  SortedList sorted(tasks, By(&Task::load));
  Follow(sorted);

  tasks.Edit([](std::vector<Task>& rows) {
    for (Task& task : rows) task.load = task.id * 7919 % 1000;
  });
  sorted.SortBy(By(&Task::id));

  EXPECT_EQ(told, "changed reordered reordered ");
}

TEST_F(ViewTest, SettingsWaitUntilAChangeWasToldToAll) {
  tasks.Assign({{1, 1}, {2, 2}});
  SortedList sorted(tasks, By(&Task::load));
  FilteredList shown(sorted, [](const Task&) { return true; });
  const Subscription changing = tasks.Observe({.before = [&](const RowChange<Task>&) {
    sorted.SortBy(By(&Task::id, Order::Descending));
    shown.SetFilter([](const Task& task) { return task.id > 1; });
  }});
  Follow(shown);

  tasks.Insert(0, {3, 3});

  EXPECT_EQ(told, "inserted reordered removed ");
  EXPECT_EQ(IdsOf(shown), (std::vector{3, 2}));
}

TEST_F(ViewTest, ARowWhoseComparisonThrowsStandsAtTheEndUntilItChanges) {
  int failures = 0;
  SetListenerFailureHandler([&](const ListenerFailure&) { ++failures; });
  const auto byLoad = [](const Task& one, const Task& other) {
    if (one.load < 0 || other.load < 0) throw one;
    return one.load < other.load;
  };
  tasks.Assign({{1, -1}, {2, 2}, {3, 1}});
  SortedList sorted(tasks, byLoad);
  EXPECT_EQ(IdsOf(sorted), (std::vector{3, 2, 1}));

  Load(2, -2);
  Load(3, 9);
  tasks.Insert(0, {4, 4});
  EXPECT_EQ(IdsOf(sorted), (std::vector{4, 3, 1, 2}));
  Load(1, 5);
  EXPECT_EQ(IdsOf(sorted), (std::vector{4, 1, 3, 2}));

  EXPECT_GT(failures, 1);
  SetListenerFailureHandler(nullptr);
}

class Settings : public NamedDataSource {
 public:
  Settings() : NamedDataSource(L"Settings") {}

  Property<double> threshold{this, L"Threshold", 1};
};

TEST_F(ViewTest, APropertyBehindTheFunctionHasAllRowsAskedAgain) {
  tasks.Assign({{1, 1}, {2, 2}, {3, 3}});
  const auto settings = MakeDataSource<Settings>(nullptr);
  Property<double>& threshold = settings->threshold;
  const auto isHot = [&](const Task& task) { return task.load > *threshold; };
  FilteredList hot(tasks, isHot, threshold);
  Follow(hot);

  threshold.Set(2);
  EXPECT_EQ(IdsOf(hot), (std::vector{3}));
  threshold.Set(0);

  EXPECT_EQ(told, "removed inserted ");
  EXPECT_EQ(IdsOf(hot), (std::vector{1, 2, 3}));
}

TEST_F(ViewTest, AViewThatNobodyReadsAsksNothing) {
  int asked = 0;
  FilteredList shown(tasks, [&](const Task&) { return ++asked > 0; });
  SortedList sorted(shown, By(&Task::load));
  tasks.Assign({{1, 1}, {2, 2}});
  EXPECT_EQ(asked, 0);

  EXPECT_EQ(sorted.Size(), 2);
  EXPECT_EQ(asked, 2);
}

TEST_F(ViewTest, AFunctionOfAnUpdateMayReadAViewThatSleeps) {
  tasks.Assign({{1, 1}, {2, 2}});
  FilteredList shown(tasks, [](const Task&) { return true; });

  tasks.Update(1, [&](Task& task) { task.load += double(shown.Size()); });

  EXPECT_EQ(tasks[0], (Task{1, 3}));
}

TEST_F(ViewTest, AnObserverMayEndAViewThatIsFilteredAnew) {
  tasks.Assign({{1, 1}, {2, 2}});
  const auto settings = MakeDataSource<Settings>(nullptr);
  const auto isHot = [](const Task& task) { return task.id > 1; };
  auto shown = std::make_unique<FilteredList<Task>>(tasks, isHot, settings->threshold);
  const Subscription ending = shown->Observe({.after = [&](const auto&) { shown.reset(); }});

  shown->SetFilter([](const Task&) { return true; }, settings->threshold);
  settings->threshold.Set(2);

  EXPECT_EQ(shown, nullptr);
}

TEST_F(ViewTest, AnOrderThatIsGivenWhileAViewAwakesIsTheNextOne) {
  tasks.Assign({{1, 2}, {2, -1}, {3, 1}});
  const auto byLoad = [](const Task& one, const Task& other) {
    if (one.load < 0 || other.load < 0) throw one;
    return one.load < other.load;
  };
  SortedList sorted(tasks, byLoad);
  SetListenerFailureHandler(
      [&](const ListenerFailure&) { sorted.SortBy(By(&Task::id, Order::Descending)); });

  EXPECT_EQ(IdsOf(sorted), (std::vector{3, 2, 1}));
  SetListenerFailureHandler(nullptr);
}

TEST(View, OutlivesItsListAndIsEmptyThen) {
  auto tasks = std::make_unique<ListData<Task>>();
  tasks->Insert(0, {1, 1});
  SortedList sorted(*tasks, By(&Task::load));
  FilteredList shown(sorted, [](const Task&) { return true; });
  std::vector<std::size_t> sizes;
  const auto note = [&](const RowChange<Task>&) { sizes.push_back(shown.Size()); };
  const Subscription seen = shown.Observe({.before = note, .after = note});

  tasks.reset();
  sorted.SortBy(By(&Task::id));
  shown.Refilter();

  EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 0}));
  EXPECT_TRUE(sorted.IsEmpty());
  EXPECT_EQ(shown.UpdateRow(0, details::RowEdit([](void*) { return SetResult(); })).error,
            PropertyError::Absent);
}

TEST_F(ViewTest, AChangedKeyIsToldWithoutAllocating) {
  for (int id = 0; id < 5000; ++id) tasks.Insert(0, {id, double(id)});
  SortedList sorted(tasks, By(&Task::load));
  FilteredList shown(sorted, [](const Task& task) { return task.id % 2 == 0; });
  int count = 0;
  const Subscription counting = shown.Observe({.after = [&](const auto&) { ++count; }});
  for (int id = 0; id < 100; ++id) Load(id, id * 37 % 5000 + 0.5);

  const auto before = Testing::Allocations();
  for (int id = 0; id < 100; ++id) Load(id, id * 41 % 5000 + 0.25);

  EXPECT_EQ(Testing::Allocations(), before);
  EXPECT_GT(count, 100);
}

TEST_F(ViewTest, FailingAllocationsLeaveListAndViewsAsTheyWere) {
  SortedList sorted(tasks, By(&Task::load));
  FilteredList shown(sorted, [](const Task& task) { return task.id % 3 != 0; });
  FilteredList even(tasks, [](const Task& task) { return task.id % 2 == 0; });
  EXPECT_EQ(sorted.Size() + shown.Size() + even.Size(), 0);
  std::vector<Task> rows;
  for (int id = 0; id < 700; ++id) rows.push_back({id, double(id * 31 % 700)});

  for (std::int64_t number = 1; tasks.IsEmpty(); ++number) {
    auto given = rows;
    const Testing::FailingAllocation failing(number);
    try {
      tasks.Assign(std::move(given));
    } catch (const std::bad_alloc&) {
      ASSERT_EQ(tasks.Size() + sorted.Size() + shown.Size() + even.Size(), 0);
    }
  }

  SortedList anew(tasks, By(&Task::load));
  EXPECT_EQ(IdsOf(sorted), IdsOf(anew));
  EXPECT_EQ(shown.Size(), 466);
}

TEST_F(ViewTest, AViewOfASleepingOneAwakesAfterItHasRunOutOfMemory) {
  tasks.Assign({{1, 1}, {2, 2}});
  SetListenerFailureHandler([](const ListenerFailure&) {});
  std::size_t shownAtOnce = 0;
  for (std::int64_t number = 1; shownAtOnce == 0; ++number) {
    FilteredList shown(tasks, [](const Task&) { return true; });
    SortedList sorted(shown, By(&Task::load));
    {
      const Testing::FailingAllocation failing(number);
      shownAtOnce = sorted.Size();
    }
    ASSERT_EQ(sorted.Size(), 2) << number;
  }
  SetListenerFailureHandler(nullptr);
}

TEST_F(ViewTest, ANewOrderOfAViewWithoutSpareRoomFailsBeforeItIsTold) {
  SortedList sorted(tasks, By(&Task::id));
  EXPECT_TRUE(sorted.IsEmpty());
  for (int id = 0; id < 5120; ++id) tasks.Insert(tasks.Size(), {id, double(-id)});
  Follow(sorted);

  for (std::int64_t number = 1; told.empty(); ++number) {
    const Testing::FailingAllocation failing(number);
    try {
      sorted.SortBy(By(&Task::load));
    } catch (const std::bad_alloc&) {
      ASSERT_EQ(told, "");
    }
  }
  EXPECT_EQ(sorted[0].id, 5119);
}

}  // namespace
}  // namespace DataBinding

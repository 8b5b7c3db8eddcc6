// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "../lists/Processes.h"
#include "Attempts.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/lists/SortedList.h"
#include "DataBinding/lists/SourceList.h"
#include "DataBinding/property/Property.h"

namespace DataBinding::Testing {
namespace {

struct Task : NamedDataSource {
  explicit Task(int itsRank) : NamedDataSource(L"Task"), rank(this, L"Rank", itsRank) {}
  Property<int> rank;
};
constexpr auto FieldsOf(const Task* /*row*/) { return Fields(Field(L"Rank", &Task::rank)); }
struct Plan : NamedDataSource {
  Plan() : NamedDataSource(L"Plan") {}
  SourceList<Task> tasks{this, L"Tasks"};
};

/// A change that could not be told is told with the next one.
TEST(ListMemory, KeepsSourcesAndTheirOrderWhenAnyAllocationFails) {
  SetListenerFailureHandler([](const ListenerFailure&) {});
  Attempts::Of([](Attempts& attempt) {
    const auto plan = MakeDataSource<Plan>(nullptr);
    const Subscription announced = plan->Register([] {}, L"Tasks");
    SourceList<Task>& tasks = plan->tasks;
    SortedList sorted(tasks, By(&Task::rank));
    attempt([&] { tasks.Emplace(1); });
    attempt([&] { return sorted.Size() == 1; });
    attempt([&] { return tasks.Add(MakeDataSource<Task>(nullptr, 2)).changed; });
    attempt([&] { return tasks.Insert(0, MakeDataSource<Task>(nullptr, 3)).changed; });
    attempt([&] { return tasks[0].rank.Set(0).changed; });
    attempt([&] { return tasks[1].rank.Set(4).changed; });
    tasks[2].rank.Set(5);
    EXPECT_TRUE(std::ranges::equal(sorted, std::vector{0, 4, 5}, {},
                                   [](const Task& task) { return *task.rank; }));
    attempt([&] { return tasks.Take(1) != nullptr; });
    attempt([&] { return tasks.Remove(0, 2).changed; });
  });
  SetListenerFailureHandler({});
}

TEST(ListMemory, LosesNothingWhenAnyAllocationFails) {
  SetListenerFailureHandler([](const ListenerFailure&) {});  // the twins are meant
  Attempts::Of([](Attempts& attempt) {
    ListData<Process> list;
    std::string log;
    log.reserve(1000);
    const Subscription seen = WriteDown(list, log);
    auto rows = Processes({1, 2, 3, 4, 5, 6, 7, 8});
    attempt([&] { return list.Assign(rows).changed; });
    rows.erase(rows.begin() + 2);
    std::swap(rows.front(), rows.back());
    rows.push_back({1, L"twin", 0});
    attempt([&] { return list.Assign(rows).changed; });
    attempt([&] { return list.Insert(0, Process{9, L"p", 0}).changed; });
    attempt([&] { return list.Move(0, 2, 4).changed; });
    const std::vector<int> keys{4, 5, 6};
    attempt([&] { return list.Update(keys, [](Process& process) { process.id += 10; }).changed; });
    attempt([&] { return list.Remove(1, 3).changed; });
    EXPECT_EQ(log, "+0x8 -2 >6to0 >1to6 +7 +0 >0x2to4 =1x3 -1x3 ");
    EXPECT_EQ(IdsOf(list), "2 9 8 7 1 1 ");
  });
  SetListenerFailureHandler({});
}

TEST(ListMemory, LosesNothingWhenAnAllocationOfAWaitingOperationFails) {
  Attempts::Of([](Attempts& attempt) {
    ListData<Process> list;
    auto rows = Processes({1, 2, 3, 4});
    attempt([&] { return list.Assign(rows).changed; });
    bool isDone = false;
    Subscription seen;
    const auto renumber = [](Process& row) { row.id = 7; };
    const auto react = [&](const RowChange<Process>&) {
      if (std::exchange(isDone, true)) return;
      attempt([&] { return list.Insert(1, Process{8, L"p", 0}).waits; });
      attempt([&] { return list.Update(3, renumber).waits; });
      attempt([&] { return list.Move(0, 1, 2).waits; });
      attempt([&] { return list.RemoveKey(2).waits; });
    };
    attempt([&] { seen = list.Observe({.before = react}); });
    rows.pop_back();
    attempt([&] { return list.Assign(rows).changed; });
    EXPECT_EQ(IdsOf(list), "8 7 1 ");
  });
}

TEST(ListMemory, ChangesARowWithoutAllocating) {
  ListData<Process> list;
  list.Assign(Processes({1, 2, 3}));
  int heard = 0;
  const Subscription seen = list.Observe({.after = [&](const auto&) { ++heard; }});
  const auto change = [&] { list.Update(2, [](Process& process) { process.cpu += 1; }); };
  change();

  const auto before = Allocations();
  for (int i = 0; i < 10; ++i) change();

  EXPECT_EQ(Allocations(), before);
  EXPECT_EQ(heard, 11);
}

}  // namespace
}  // namespace DataBinding::Testing

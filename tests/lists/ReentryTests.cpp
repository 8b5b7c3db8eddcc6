// SPDX-License-Identifier: Apache-2.0
// Great operations that are called while a list tells another one.

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/lists/Order.h"
#include "DataBinding/lists/Selection.h"
#include "DataBinding/lists/SortedList.h"
#include "Processes.h"

namespace DataBinding::Testing {
namespace {

constexpr int rowsThatCome = 5000;

/// Calls a function once, before the next change of a list.
Subscription OnceBefore(ReadableList<Process>& list, std::function<void()> call) {
  return list.Observe({.before = [call = std::move(call)](const RowChange<Process>&) mutable {
    if (const auto once = std::exchange(call, nullptr)) once();
  }});
}

std::vector<Process> Numbered(int first, int count) {
  std::vector<int> ids;
  for (int id = first; id < first + count; ++id) ids.push_back(id);
  return Processes(ids);
}

TEST(ListReentry, ManyRowsMayWaitWhileAllRowsAreReordered) {
  ListData<Process> list;
  list.Assign(Numbered(0, 300));
  const SortedList view(list, By(&Process::id, Order::Descending));
  const auto inserted = OnceBefore(list, [&] { list.Insert(0, Numbered(1000, rowsThatCome)); });
  auto reversed = Numbered(0, 300);
  std::ranges::reverse(reversed);
  list.Assign(reversed);
  EXPECT_EQ(list.Size(), 300 + rowsThatCome);
  EXPECT_EQ(view.Size(), 300 + rowsThatCome);
}

TEST(ListReentry, AViewMayWakeBeforeManyRowsCome) {
  ListData<Process> list;
  list.Assign(Numbered(0, 3));
  const SortedList view(list, By(&Process::id, Order::Descending));
  const auto woken = OnceBefore(list, [&] { EXPECT_EQ(view.Size(), 3U); });
  list.Insert(0, Numbered(1000, rowsThatCome));
  ASSERT_EQ(view.Size(), 3 + rowsThatCome);
  EXPECT_EQ(view[0].id, 999 + rowsThatCome);
}

TEST(ListReentry, RowsThatWereSetAsideReturnInTheirOrder) {
  SetListenerFailureHandler([](const ListenerFailure&) {});
  ListData<Process> list;
  list.Assign(Numbered(1, 3));
  const SortedList<Process> view(list, [](const Process& one, const Process& other) {
    if (one.cpu == 7 || other.cpu == 7) throw one.cpu;
    return one.cpu < other.cpu;
  });
  EXPECT_EQ(view.Size(), 3U);
  for (const int id : {2, 1}) list.Update(id, [](Process& process) { process.cpu = 7; });
  list.Update(std::vector<int>{1, 2}, [](Process& process) { process.cpu = process.id; });
  EXPECT_EQ(IdsOf(view), "3 1 2 ");
  SetListenerFailureHandler({});
}

TEST(ListReentry, ASelectionTellsNothingOfRowsThatCannotBeReadAnyMore) {
  auto list = std::make_unique<ListData<Process>>();
  list->Assign(Numbered(0, 3));
  Selection<Process> chosen(*list);
  chosen.Choose(std::vector<RowId>{list->At(0), list->At(1), list->At(2)});
  std::vector<int> gone;
  const auto seen = chosen.Observe({.gone = [&](RowId id) {
    ASSERT_NE(chosen.List(), nullptr);
    gone.push_back(chosen.List()->RowAt(id).id);
    list.reset();
  }});
  list->Remove(0, 2);
  EXPECT_EQ(gone.front(), 0);
  EXPECT_EQ(chosen.List(), nullptr);
}

}  // namespace
}  // namespace DataBinding::Testing

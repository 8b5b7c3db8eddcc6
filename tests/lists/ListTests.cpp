// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/List.h"

#include <memory>
#include <numeric>
#include <stdexcept>

#include <gtest/gtest.h>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "Processes.h"

namespace DataBinding::Testing {
namespace {

using Change = RowChange<Process>;

/// A row type without a key.
struct Line {
  VtrString text;
};
constexpr auto FieldsOf(const Line*) { return Fields(Field(L"Text", &Line::text)); }

/// Collects the texts that the failure handler is told.
struct Failures {
  Failures() {
    SetListenerFailureHandler([this](const ListenerFailure& failure) {
      names += failure.property.ToUtf8() + " ";
      ++count;
    });
  }
  ~Failures() { SetListenerFailureHandler({}); }

  std::string names;
  int count = 0;
};

struct Assigned {
  const char* what;
  std::vector<int> before;
  std::vector<int> after;
  const char* told;
};

/// Makes the numbers from 0 to 99, last one first.
std::vector<int> Reversed() {
  std::vector<int> numbers(100);
  std::iota(numbers.rbegin(), numbers.rend(), 0);
  return numbers;
}

std::vector<Assigned> Assignments() {
  const std::vector<int> reversed = Reversed();
  const std::vector<int> hundred(reversed.rbegin(), reversed.rend());
  auto replaced = reversed;
  replaced[50] = 1000;
  return {
      {"nothing", {1, 2, 3}, {1, 2, 3}, ""},
      {"rows go, last run first", {1, 2, 3, 4, 5}, {1, 4}, "-4 -1x2 "},
      {"rows come, first run first", {1, 4}, {9, 1, 2, 3, 4}, "+0 +2x2 "},
      {"one moves down", {1, 2, 3, 4, 5}, {2, 3, 4, 1, 5}, ">0to3 "},
      {"one moves up", {1, 2, 3, 4, 5}, {5, 1, 2, 3, 4}, ">4to0 "},
      {"a run moves together", {1, 2, 3, 4, 5, 6, 7}, {3, 4, 5, 6, 7, 1, 2}, ">0x2to5 "},
      {"all at once", {1, 2, 3, 4}, {4, 8, 1, 3}, "-1 >2to0 +1 "},
      {"too many moves", hundred, reversed, "~0x100 "},
      {"too many moves and another row", hundred, replaced, "!0x100 "},
      {"doubles in order", {1, 1, 2, 1}, {1, 2, 1}, "-3 >2to1 "},
  };
}

TEST(List, AssignTellsOnlyWhatDiffers) {
  const Failures failures;  // the doubles are meant
  for (const Assigned& one : Assignments()) {
    SCOPED_TRACE(one.what);
    ListData<Process> list;
    list.Assign(Processes(one.before));
    std::string log;
    const Subscription seen = WriteDown(list, log);

    list.Assign(Processes(one.after));

    EXPECT_EQ(log, one.told);
  }
}

TEST(List, TellsAllChangedRowsOfAnOperationTogether) {
  ListData<Process> list;
  list.Assign(Processes({1, 2, 3, 4}));
  std::string log;
  const auto note = [&](const Change& change) {
    EXPECT_TRUE(change.Has(&Process::cpu) && !change.Has(&Process::name));
    for (std::size_t i = 0; i < change.Count(); ++i) {
      EXPECT_EQ(change.Was(i).cpu, 0);
      EXPECT_EQ(change.Will(i).cpu, 7);
      EXPECT_EQ(change[i].cpu, change.IsBefore() ? 0 : 7);
      log += std::to_string(change.Places()[i]) + (change.IsBefore() ? "? " : "! ");
    }
  };
  const Subscription seen = list.Observe({.before = note, .after = note});

  list.Update(std::vector<int>{4, 1, 4}, [](Process& process) { process.cpu = 7; });

  EXPECT_EQ(log, "0? 3? 0! 3! ");
}

TEST(List, MatchesRowsWithoutAKeyByEqualityAtBothEndsAndThenByPlace) {
  ListData<Line> list;
  list.Assign({{L"a"}, {L"b"}, {L"c"}, {L"d"}});
  const auto ids = [&] { return std::vector{*list.IdAt(0), *list.IdAt(1), *list.IdAt(2)}; };
  const auto before = ids();
  int changes = 0;
  const Subscription seen = list.Observe({.after = [&](const auto&) { ++changes; }});

  list.Assign({{L"a"}, {L"x"}, {L"d"}});

  EXPECT_EQ(changes, 2);  // "b" has become "x", "c" has gone
  EXPECT_EQ(ids()[1], before[1]);
}

TEST(List, SaysWhyACellIsNotSet) {
  ListData<Process> list;
  list.Assign(Processes({1, 2}));
  const std::pair<SetResult, const char*> cases[] = {
      {list.SetCell(2, L"Cpu", 1.0),
       "List \"without name\" has 2 rows, and not 1 from place 2 on."},
      {list.SetCell(0, L"Size", 1.0), "The rows of list \"without name\" have no field \"Size\"."},
      {list.SetCell(0, L"Name", L"init"),
       "Field \"Name\" of list \"without name\" can be read, but only the owner of the list sets "
       "it."},
      {list.SetCell(0, L"Cpu", -1.0),
       "Field \"Cpu\" of list \"without name\" refuses the value: is negative"},
      {list.CheckRow({3, L"new", -1.0}),
       "Field \"Cpu\" of list \"without name\" refuses the value: is negative"},
      {list.SetCell(0, L"Id", 2),
       "Field \"Id\" of list \"without name\" refuses the value: another row has the key 2"},
      {list.Update(7, [](Process&) {}), "List \"without name\" has no row with the key 7."},
  };
  for (const auto& [result, text] : cases) EXPECT_EQ(result.text.ToUtf8(), text);
  const SetResult misfit = list.SetCell(0, L"Cpu", L"much");
  EXPECT_EQ(misfit.error, PropertyError::WrongType);
  EXPECT_NE(misfit.text.ToUtf8().find("double"), std::string::npos) << misfit;
  EXPECT_TRUE(list.SetCell(0, L"Cpu", 3).changed);
  EXPECT_EQ(list.Cell(0, 2), Value(3.0));
}

TEST(List, LetsRowsOfOneUpdateExchangeTheirKeys) {
  ListData<Process> list;
  list.Assign(Processes({1, 2, 3}));

  list.Update(std::vector{1, 2}, [](Process& process) { process.id = 3 - process.id; });

  EXPECT_EQ(IdsOf(list), "2 1 3 ");
  EXPECT_EQ(list.Find(1), &list[1]);
  EXPECT_FALSE(list.Update(std::vector{1, 2}, [](Process& p) { p.id = 9; }).IsAccepted());
}

TEST(List, TellsOfItsEndWhileRowsCanBeRead) {
  auto owner = std::make_unique<ListData<Process>>();
  ListData<Process>& list = *owner;
  list.Assign(Processes({1, 2}));
  std::string log;
  const Subscription seen = list.Observe({
      .before = [&](const Change& change) { log += Describe(change) + " " + IdsOf(list); },
      .after = [&](const Change& change) { log += Describe(change) + " " + IdsOf(list); },
  });

  owner.reset();

  EXPECT_EQ(log, "!0x0 1 2 !0x0 ");
}

TEST(List, MayEndInAnyOfItsCalls) {
  for (const bool isBefore : {true, false}) {
    auto list = std::make_unique<ListData<Process>>();
    std::string log;
    const auto end = [&](const Change& change) {
      if (change.IsBefore() != isBefore || list == nullptr) return;
      list->Insert(0, Process{2, L"waits", 0});
      list.reset();
    };
    const Subscription ending = list->Observe({.before = end, .after = end});
    const Subscription seen = WriteDown(*list, log);

    EXPECT_TRUE(list->Assign(Processes({1})).IsAccepted());

    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(log, "!0x0 ");
  }
}

TEST(List, TellsAChangeWholeToObserversThatBeginBeforeIt) {
  ListData<Process> list;
  std::string log;
  Subscription inBefore;
  Subscription inAfter;
  const auto hear = [&](const Change& change) { log += change.IsBefore() ? "b" : "a"; };
  const auto later = [&](const Change&) { log += "x"; };
  const Subscription first = list.Observe({
      .before = [&](const Change&) { inBefore = list.Observe({.before = hear, .after = hear}); },
      .after = [&](const Change&) { inAfter = list.Observe({.before = later, .after = later}); },
  });

  list.Insert(0, Process{1, L"p", 0});

  EXPECT_EQ(log, "ba");
}

TEST(List, LetsOperationsWaitAndRunsTheirFunctionsAtOnce) {
  ListData<Process> list;
  std::string log;
  SetResult update;
  SetResult edit;
  const Subscription first = list.Observe({.after = [&](const Change& change) {
    if (change.Kind() != ListChangeKind::Inserted) return;
    update = list.Update(1, [](Process& process) { process.cpu += 1; });
    edit = list.Edit([&](std::vector<Process>& rows) {
      EXPECT_EQ(rows.front().cpu, 1);
      rows.pop_back();
    });
    EXPECT_EQ(list[0].cpu, 0);
  }});
  const Subscription seen = WriteDown(list, log);

  list.Assign(Processes({1, 2}));

  EXPECT_TRUE(update.waits && edit.waits && !update.changed);
  EXPECT_EQ(log, "+0x2 =0 -1 ");
}

TEST(List, ReportsWhatObserversThrowUnderItsName) {
  const Failures failures;
  ListData<Process> list;
  std::string log;
  const Subscription throwing =
      list.Observe({.after = [](const Change&) { throw std::runtime_error("no"); }});
  const Subscription seen = WriteDown(list, log);

  list.Assign(Processes({1}));

  EXPECT_EQ(failures.names, " ");
  EXPECT_EQ(log, "+0 ");
}

TEST(List, ReportsDoublesOnce) {
  const Failures failures;
  ListData<Process> list;

  list.Assign(Processes({1, 1}));
  list.Insert(0, Process{1, L"third", 0});

  EXPECT_EQ(failures.count, 1);
  EXPECT_EQ(list.Find(1)->name, L"third");
}

TEST(List, ReportsCallbacksThatNeverComeToRestOnce) {
  const Failures failures;
  ListData<Process> list;
  list.Assign(Processes({1}));
  const Subscription restless = list.Observe({.after = [&](const Change& change) {
    if (change[0].cpu < 3000) list.UpdateAt(0, [](Process& process) { process.cpu += 1; });
  }});

  list.UpdateAt(0, [](Process& process) { process.cpu = 1; });

  EXPECT_EQ(list[0].cpu, 3000);
  EXPECT_EQ(failures.count, 1);
}

TEST(List, RefusesToBeChangedByTheFunctionOfAnUpdate) {
  ListData<Process> list;
  list.Assign(Processes({1}));
  SetResult within;

  list.UpdateAt(0, [&](Process& process) {
    within = list.Remove(0);
    process.cpu = 1;
  });

  EXPECT_EQ(within.error, PropertyError::Refused);
  EXPECT_EQ(list[0].cpu, 1);
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
// Lists of rows with a key, a text and a number: assigning whole lists, inserting rows, reading a
// cell, and memory.

#include <cstddef>
#include <utility>
#include <vector>

#include "Allocations.h"
#include "DataBinding/lists/List.h"
#include "Memory.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

using DataBinding::VtrString;

struct Process {
  int id;
  VtrString name;
  double cpu;
};

constexpr auto FieldsOf(const Process*) {
  return DataBinding::Fields(DataBinding::Key(L"Id", &Process::id),
                             DataBinding::Field(L"Name", &Process::name),
                             DataBinding::Field(L"Cpu", &Process::cpu));
}

using Rows = std::vector<Process>;
using List = DataBinding::ListData<Process>;

Rows MakeRows(std::size_t count) {
  const VtrString name = L"process";
  Rows rows;
  rows.reserve(count);
  for (std::size_t i = 0; i < count; ++i) rows.push_back({static_cast<int>(i), name, 0});
  return rows;
}

/// Changes so many rows of a thousand: half of them get another number, half are replaced by new
/// ones. Returns how many changes a list has to tell.
std::size_t Alter(Rows& rows, std::size_t ofThousand, int& lastId) {
  const std::size_t altered = rows.size() * ofThousand / 1000;
  for (std::size_t i = 0; i < altered; ++i) {
    Process& row = rows[i * (rows.size() / altered)];
    if (i % 2 == 0) {
      row.cpu += 1;
    } else {
      row.id = ++lastId;
    }
  }
  return altered == 0 ? 0 : 1 + altered / 2 * 2;
}

/// The arguments are {rows, rows of a thousand that are altered}. The copy of the rows that the
/// list takes over is made off the clock.
void Assign(benchmark::State& state) {
  Rows rows = MakeRows(static_cast<std::size_t>(state.range(0)));
  List list;
  list.Assign(rows);
  int lastId = 1'000'000'000;
  Counter told = 0;
  Counter toTell = 0;
  const auto seen = list.Observe({.after = [&](const auto&) { ++told; }});
  for (auto _ : state) {
    state.PauseTiming();
    toTell += Alter(rows, static_cast<std::size_t>(state.range(1)), lastId);
    Rows given = rows;
    state.ResumeTiming();
    list.Assign(std::move(given));
  }
  if (told != toTell) state.SkipWithError("not as many changes as differ were told");
}

/// Inserts 10,000 rows at once into a new list.
void Insert(benchmark::State& state) {
  const Rows rows = MakeRows(10'000);
  for (auto _ : state) {
    state.PauseTiming();
    {
      List list;
      Rows given = rows;
      state.ResumeTiming();
      list.Insert(0, std::move(given));
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

void UpdateOne(benchmark::State& state) {
  constexpr int count = 100'000;
  List list;
  list.Assign(MakeRows(count));
  Counter told = 0;
  const auto seen = list.Observe({.after = [&](const auto&) { ++told; }});
  int id = 0;
  list.Update(id, [](Process& row) { row.cpu += 1; });
  const AllocationWatch watch(state);
  for (auto _ : state) {
    id = (id + 7919) % count;
    list.Update(id, [](Process& row) { row.cpu += 1; });
  }
}

/// Reads one field of all rows, one row after the other, as an item model does: it does not know
/// what kind of list it shows.
void Cell(benchmark::State& state) {
  constexpr std::size_t count = 10'000;
  List list;
  list.Assign(MakeRows(count));
  const DataBinding::AnyList* shown = &list;
  benchmark::DoNotOptimize(shown);
  const std::size_t field = *shown->FieldNumber(L"Cpu");
  const AllocationWatch watch(state);
  std::size_t at = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(shown->Cell(at, field));
    at = at + 1 == count ? 0 : at + 1;
  }
}

/// The bytes of a row beside its struct: in a new list, and after many moves and replacements.
void Memory(benchmark::State& state) {
  const auto fresh = [](std::size_t count) {
    auto list = std::make_unique<List>();
    list->Assign(MakeRows(count));
    return list;
  };
  const auto churned = [&](std::size_t count) {
    auto list = fresh(count);
    for (std::size_t i = 0; i < 2 * count; ++i) {
      list->Move(i * 7919 % count, 1, i * 104'729 % count);
      list->Remove(i * 31 % count);
      list->Insert(i * 17 % count, Process{static_cast<int>(count + i), L"", 0});
    }
    return list;
  };
  for (auto _ : state) {
    state.counters["fresh"] = BytesOfEach(memorySample, fresh) - sizeof(Process);
    state.counters["churned"] = BytesOfEach(memorySample, churned) - sizeof(Process);
  }
}

[[maybe_unused]] const bool measured = [] {
  auto& assign = Enter("lists/assign", "ours", &Assign);
  assign.Args({10'000, 0})->Args({10'000, 10})->Args({1'000'000, 0})->Args({1'000'000, 10});
  Enter("lists/insert", "ours", &Insert);
  Enter("lists/update", "ours", &UpdateOne);
  Enter("lists/cell", "ours", &Cell);
  if (heapIsCounted) Enter("memory/list", "ours", &Memory).Iterations(1);
  return true;
}();

}  // namespace

}  // namespace Benchmarks

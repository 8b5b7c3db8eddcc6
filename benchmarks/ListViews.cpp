// SPDX-License-Identifier: Apache-2.0
// Sorted and filtered views of lists, beside what the same costs without telling anybody: sorting
// and copying the indexes of the rows.

#include <algorithm>
#include <numeric>
#include <random>

#include "Allocations.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/SortedList.h"
#include "Memory.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

using DataBinding::By;
using DataBinding::FilteredList;
using DataBinding::ListData;
using DataBinding::RowChange;
using DataBinding::SortedList;
using DataBinding::Subscription;

struct LoadedRow {
  int id;
  double load;
  bool operator==(const LoadedRow&) const = default;
};
constexpr auto FieldsOf(const LoadedRow*) {
  return DataBinding::Fields(DataBinding::Key(L"Id", &LoadedRow::id),
                             DataBinding::Field(L"Load", &LoadedRow::load));
}

std::vector<LoadedRow> LoadsOf(int count) {
  std::mt19937 random(1);
  std::vector<LoadedRow> made;
  made.reserve(static_cast<std::size_t>(count));
  for (int id = 0; id < count; ++id) made.push_back({id, double(random() % 1'000'000)});
  return made;
}

/// A list that is observed through a sorted view.
struct SortedLoads {
  explicit SortedLoads(int count) { list.Assign(LoadsOf(count)); }

  ListData<LoadedRow> list;
  SortedList<LoadedRow> sorted{list, By(&LoadedRow::load)};
  std::size_t told = 0;
  Subscription seen = sorted.Observe({.after = [this](const RowChange<LoadedRow>&) { ++told; }});
};

void OneKey(benchmark::State& state) {
  SortedLoads entries(100'000);
  std::mt19937 random(2);
  const auto change = [&] {
    entries.list.Update(static_cast<int>(random() % 100'000),
                        [&](LoadedRow& entry) { entry.load = double(random() % 1'000'000); });
  };
  for (int i = 0; i < 10'000; ++i) change();
  const AllocationWatch watch(state);
  for (auto _ : state) change();
}

/// Changes one row of a hundred, or none.
void AssignAnew(benchmark::State& state) {
  auto rows = LoadsOf(10'000);
  SortedLoads entries(10'000);
  const auto changed = static_cast<std::size_t>(state.range(0));
  std::mt19937 random(3);
  for (auto _ : state) {
    for (std::size_t i = 0; i < changed; ++i) {
      rows[random() % rows.size()].load = double(random() % 1'000'000);
    }
    entries.list.Assign(rows);
  }
}

void EveryValue(benchmark::State& state) {
  auto rows = LoadsOf(100'000);
  SortedLoads entries(100'000);
  std::mt19937 random(4);
  for (auto _ : state) {
    state.PauseTiming();
    for (LoadedRow& row : rows) row.load = double(random() % 1'000'000);
    state.ResumeTiming();
    entries.list.Assign(rows);
  }
}

/// A list that is observed through a filter.
struct FilteredLoads {
  explicit FilteredLoads(int count) { list.Assign(LoadsOf(count)); }

  ListData<LoadedRow> list;
  FilteredList<LoadedRow> shown{list, [](const LoadedRow& entry) { return entry.load >= 10'000; }};
  std::size_t told = 0;
  Subscription seen = shown.Observe({.after = [this](const RowChange<LoadedRow>&) { ++told; }});
};

template <class Entries>
void InsertMany(benchmark::State& state) {
  const auto rows = LoadsOf(10'000);
  for (auto _ : state) {
    state.PauseTiming();
    {
      Entries entries(0);
      state.ResumeTiming();
      entries.list.Insert(0, rows);
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

void FilterAnew(benchmark::State& state) {
  ListData<LoadedRow> list;
  list.Assign(LoadsOf(100'000));
  double least = 0;
  FilteredList<LoadedRow> shown(list, [&](const LoadedRow& entry) { return entry.load >= least; });
  std::size_t told = 0;
  const Subscription seen = shown.Observe({.after = [&](const RowChange<LoadedRow>&) { ++told; }});
  for (auto _ : state) {
    least = least == 0 ? 10'000 : 0;  // one row of a hundred goes or comes
    shown.Refilter();
  }
}

/// The floors: the indexes of the rows are sorted, or copied where the row fits.
void SortIndexes(benchmark::State& state) {
  auto rows = LoadsOf(static_cast<int>(state.range(0)));
  std::vector<std::uint32_t> indexes(rows.size());
  for (auto _ : state) {
    std::iota(indexes.begin(), indexes.end(), 0U);
    std::ranges::stable_sort(indexes, {}, [&](std::uint32_t index) { return rows[index].load; });
    benchmark::DoNotOptimize(indexes.data());
  }
}

void CopyIndexes(benchmark::State& state) {
  const auto rows = LoadsOf(100'000);
  std::vector<std::uint32_t> all(rows.size());
  std::vector<std::uint32_t> shown(rows.size());
  std::iota(all.begin(), all.end(), 0U);
  for (auto _ : state) {
    std::ranges::copy_if(all, shown.begin(),
                         [&](std::uint32_t index) { return rows[index].load >= 10'000; });
    benchmark::DoNotOptimize(shown.data());
  }
}

void BytesOfView(benchmark::State& state) {
  for (auto _ : state) {
    ListData<LoadedRow> list;
    list.Assign(LoadsOf(static_cast<int>(memorySample)));
    const auto bytes = [&](std::size_t count) {
      auto view = std::make_unique<SortedList<LoadedRow>>(list, By(&LoadedRow::load));
      benchmark::DoNotOptimize(view->Size() + count);
      return view;
    };
    state.counters["bytes"] = BytesOfEach(memorySample, bytes);
  }
}

[[maybe_unused]] const bool viewsMeasured = [] {
  Enter("views/one-key", "ours", &OneKey);
  Enter("views/assign", "ours", &AssignAnew).Arg(0)->Arg(100);
  Enter("views/every-value", "ours", &EveryValue).Iterations(10);
  Enter("views/every-value", "floor", &SortIndexes).Arg(100'000)->Iterations(10);
  Enter("views/insert", "ours", &InsertMany<SortedLoads>).Iterations(50);
  Enter("views/insert", "filtered", &InsertMany<FilteredLoads>).Iterations(50);
  Enter("views/insert", "floor", &SortIndexes).Arg(10'000);
  Enter("views/refilter", "ours", &FilterAnew);
  Enter("views/refilter", "floor", &CopyIndexes);
  if (heapIsCounted) Enter("memory/view", "ours", &BytesOfView).Iterations(1);
  return true;
}();

}  // namespace

}  // namespace Benchmarks

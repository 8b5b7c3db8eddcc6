// SPDX-License-Identifier: Apache-2.0
/// Records: objects that an application makes by the thousand, each with two whole numbers, two
/// numbers with a fraction, a truth value and an empty text.
///
/// A peer is a class with `using Made`, which owns one record, and `static Made Make()`. Nobody
/// listens to the records. An owner counts as memory of its record.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Allocations.h"
#include "Memory.h"
#include "Peers.h"

namespace Benchmarks {

template <class Peer>
std::vector<typename Peer::Made> MakeRecords(std::size_t count) {
  std::vector<typename Peer::Made> made;
  made.reserve(count);
  for (std::size_t i = 0; i < count; ++i) made.push_back(Peer::Make());
  return made;
}

/// Makes as many records as memory is measured with. They end off the clock.
template <class Peer>
void MakeManyRecords(benchmark::State& state) {
  for (auto _ : state) {
    auto made = MakeRecords<Peer>(memorySample);
    benchmark::DoNotOptimize(made.data());
    state.PauseTiming();
    made.clear();
    state.ResumeTiming();
  }
}

/// Makes one record and ends it, on as many threads as the benchmark has.
template <class Peer>
void MakeAndEndRecord(benchmark::State& state) {
  for (auto _ : state) {
    auto made = Peer::Make();
    benchmark::DoNotOptimize(made);
  }
}

template <class Peer>
void MemoryOfRecord(benchmark::State& state) {
  for (auto _ : state) {
    state.counters["bytes"] = BytesOfEach(memorySample, &MakeRecords<Peer>);
    const auto before = Allocations();
    const auto one = Peer::Make();
    state.counters["allocations"] = static_cast<double>(Allocations() - before);
  }
}

template <class Peer>
bool MeasureRecord(const std::string& peer) {
  Enter("records/make", peer, &MakeManyRecords<Peer>);
  auto& onThreads = Enter("records/threads", peer, &MakeAndEndRecord<Peer>);
  onThreads.MinTime(0.1)->UseRealTime()->Threads(1)->Threads(4);
  if (heapIsCounted) Enter("memory/record", peer, &MemoryOfRecord<Peer>).Iterations(1);
  return true;
}

}  // namespace Benchmarks

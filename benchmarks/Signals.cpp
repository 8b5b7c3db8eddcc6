// SPDX-License-Identifier: Apache-2.0
// Workloads of the announcing peers that need no library but Boost and this one.

#include "Signals.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <boost/version.hpp>

namespace Benchmarks {

namespace {

using BoostMap = ByName<BoostSignal>;

[[maybe_unused]] const bool signalsMeasured[] = {
    Mention("Boost", BOOST_LIB_VERSION), MeasureSignal<Ours>("ours"),
    MeasureSignal<Naive>("naive"),       MeasureSignal<BoostSignal>("boost"),
    MeasureSignal<BoostMap>("boostmap"),
};

/// The floors cancel nothing and find nothing.
[[maybe_unused]] const bool floorsMeasured = [] {
  EnterBroadcasts<Floor>("floor");
  EnterBroadcasts<FarFloor>("farfloor");
  return true;
}();

/// Names that a hash finds hard to tell apart.
template <class Peer>
bool MeasureHardNames(const std::string& peer) {
  Enter("names/numbered", peer, &BroadcastOneOfMany<Peer, NumberedNames>).Arg(10'000);
  Enter("names/alike", peer, &BroadcastOneOfMany<Peer, AlikeNames>).Arg(10'000);
  return true;
}

[[maybe_unused]] const bool hardNamesMeasured[] = {
    MeasureHardNames<Ours>("ours"),
    MeasureHardNames<BoostMap>("boostmap"),
};

/// One registration that hears each name, of an object that nobody else listens to.
void BroadcastToAny(benchmark::State& state) {
  Announcer announcer;
  Counter counter = 0;
  const Ours::Name announced(oneName);
  const auto handle = announcer.RegisterAny([&counter](const Ours::Name&) { ++counter; });
  for (auto _ : state) {
    announcer.UpdateListeners(announced);
    benchmark::ClobberMemory();
  }
  ExpectCalls(state, counter, 1);
}

/// Registers a listener to any name at as many objects, from the first one on.
std::vector<Ours::Handle> ListenToAny(std::span<Announcer> announcers, Counter& counter) {
  std::vector<Ours::Handle> handles;
  handles.reserve(announcers.size());
  for (auto& announcer : announcers) {
    handles.push_back(announcer.RegisterAny([&counter](const Ours::Name&) { ++counter; }));
  }
  return handles;
}

/// The objects have announced before, as those that somebody listens to have.
void MemoryOfAny(benchmark::State& state) {
  Counter counter = 0;
  for (auto _ : state) {
    std::vector<Announcer> announcers(2 * memorySample);
    for (auto& announcer : announcers) announcer.UpdateListeners(oneName);
    std::span<Announcer> left(announcers);
    state.counters["bytes"] = BytesOfEach(memorySample, [&](std::size_t count) {
      const auto taken = left.first(count);
      left = left.subspan(count);
      return ListenToAny(taken, counter);
    });
  }
}

[[maybe_unused]] const bool anyMeasured = [] {
  Enter("any", "ours", &BroadcastToAny);
  if (heapIsCounted) Enter("memory/any", "ours", &MemoryOfAny).Iterations(1);
  return true;
}();

}  // namespace

}  // namespace Benchmarks

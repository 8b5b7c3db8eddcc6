// SPDX-License-Identifier: Apache-2.0
/// Finding one of many sources by its name.
///
/// A peer is made with the names of the sources. It finds one by its Name, and gives a result that
/// is not null.
#pragma once

#include <cstddef>
#include <string>

#include "Allocations.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

/// {sources, how many of them are asked for in turn}
template <class Peer>
void FindSource(benchmark::State& state) {
  const auto sources = static_cast<std::size_t>(state.range(0));
  const Texts texts = OrdinaryNames(sources);
  auto order = Shuffled(sources);
  order.resize(static_cast<std::size_t>(state.range(1)));
  const auto asked = MakeNames<typename Peer::Name>(texts, order);
  Peer peer(texts);
  auto next = asked.begin();
  const AllocationWatch watch(state);
  for (auto _ : state) {
    auto* found = peer.Find(*next);
    benchmark::DoNotOptimize(found);
    if (found == nullptr) state.SkipWithError("a source was not found");
    if (++next == asked.end()) next = asked.begin();
  }
}

/// Runs the benchmark with growing numbers of sources, up to the largest.
template <class Peer>
bool MeasureFinding(const std::string& peer, int most = 100'000) {
  auto& find = Enter("find", peer, &FindSource<Peer>);
  for (int sources = 100; sources <= most; sources *= 10) find.Args({sources, sources});
  if (most > 100) find.Args({most, 100});
  return true;
}

}  // namespace Benchmarks

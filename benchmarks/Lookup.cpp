// Announcing one of many properties, each with one listener.

#include <cstddef>
#include <vector>

#include "Allocations.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

constexpr std::size_t nameCount = 10'000;

/// Goes through the names in random order. Announced and registered names are equal strings, not
/// the same ones.
template <class Peer, Texts (*Names)(std::size_t)>
void BroadcastOneOfMany(benchmark::State& state) {
  static const Texts texts = Names(nameCount);
  const auto registered = MakeNames<typename Peer::Name>(texts);
  const auto announced = MakeNames<typename Peer::Name>(texts, Shuffled(nameCount));
  Peer peer;
  Counter counter = 0;
  std::vector<typename Peer::Handle> handles;
  handles.reserve(nameCount);
  for (const auto& name : registered) handles.push_back(peer.Register(name, Increment{&counter}));
  auto next = announced.begin();
  {
    const AllocationWatch watch(state);
    for (auto _ : state) {
      peer.Emit(*next);
      if (++next == announced.end()) next = announced.begin();
    }
  }
  ExpectCalls(state, counter, 1);
}

BENCHMARK(BroadcastOneOfMany<Ours, OrdinaryNames>)->Name("lookup/ours");
BENCHMARK(BroadcastOneOfMany<Naive, OrdinaryNames>)->Name("lookup/naive");
BENCHMARK(BroadcastOneOfMany<BoostMap, OrdinaryNames>)->Name("lookup/boostmap");
BENCHMARK(BroadcastOneOfMany<Ours, NumberedNames>)->Name("lookup/numbered/ours");
BENCHMARK(BroadcastOneOfMany<BoostMap, NumberedNames>)->Name("lookup/numbered/boostmap");
BENCHMARK(BroadcastOneOfMany<Ours, AlikeNames>)->Name("lookup/alike/ours");
BENCHMARK(BroadcastOneOfMany<BoostMap, AlikeNames>)->Name("lookup/alike/boostmap");

}  // namespace

}  // namespace Benchmarks

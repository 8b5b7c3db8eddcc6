// Announcing one property to its listeners.

#include <array>
#include <cstddef>
#include <vector>

#include "Allocations.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

template <class Peer>
void Broadcast(benchmark::State& state) {
  const auto listeners = static_cast<std::size_t>(state.range(0));
  Peer peer;
  Counter counter = 0;
  const typename Peer::Name registered(oneName);
  const typename Peer::Name announced(oneName);
  std::vector<typename Peer::Handle> handles;
  for (std::size_t i = 0; i < listeners; ++i) {
    handles.push_back(peer.Register(registered, Increment{&counter}));
  }
  {
    const AllocationWatch watch(state);
    for (auto _ : state) {
      peer.Emit(announced);
      benchmark::ClobberMemory();
    }
  }
  ExpectCalls(state, counter, listeners);
}

void Audiences(benchmark::internal::Benchmark* broadcast) {
  broadcast->Arg(1)->Arg(10)->Arg(100)->Arg(1000);
}

BENCHMARK(Broadcast<Ours>)->Name("broadcast/ours")->Apply(Audiences);
BENCHMARK(Broadcast<Floor>)->Name("broadcast/floor")->Apply(Audiences);
BENCHMARK(Broadcast<FarFloor>)->Name("broadcast/farfloor")->Apply(Audiences);
BENCHMARK(Broadcast<Naive>)->Name("broadcast/naive")->Apply(Audiences);
BENCHMARK(Broadcast<BoostSignal>)->Name("broadcast/boost")->Apply(Audiences);
BENCHMARK(Broadcast<BoostMap>)->Name("broadcast/boostmap")->Apply(Audiences);

/// A listener whose work is its thread's own, so that threads meet in the broadcast only.
thread_local Counter countOfThread = 0;

struct IncrementOfThread {
  void operator()() const { ++countOfThread; }
};

template <class Peer>
struct Shared {
  static constexpr std::size_t listeners = 10;

  Shared() {
    const typename Peer::Name registered(oneName);
    for (auto& handle : handles) handle = peer.Register(registered, IncrementOfThread());
  }

  Peer peer;
  std::array<typename Peer::Handle, listeners> handles;
};

template <class Peer>
void BroadcastFromThreads(benchmark::State& state) {
  static Shared<Peer> shared;
  const typename Peer::Name announced(oneName);
  countOfThread = 0;
  for (auto _ : state) shared.peer.Emit(announced);
  ExpectCalls(state, countOfThread, Shared<Peer>::listeners);
}

/// Runs long enough for the system to spread the threads.
void OneAndTwo(benchmark::internal::Benchmark* broadcast) {
  broadcast->Threads(1)->Threads(2)->UseRealTime()->MinTime(0.1);
}

BENCHMARK(BroadcastFromThreads<Ours>)->Name("threads/ours")->Apply(OneAndTwo);
BENCHMARK(BroadcastFromThreads<Naive>)->Name("threads/naive")->Apply(OneAndTwo);
BENCHMARK(BroadcastFromThreads<BoostSignal>)->Name("threads/boost")->Apply(OneAndTwo);

}  // namespace

}  // namespace Benchmarks

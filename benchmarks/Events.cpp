// Queued events: raising, replacing, delivering.

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <vector>

#include "Allocations.h"
#include "DataBinding/AppEvent.h"
#include "DataBinding/IdlePass.h"
#include "EventPeers.h"
#include "FarFloor.h"

namespace Benchmarks {

namespace {

using DataBinding::IdlePass;

BENCHMARK(RaiseAndDispatch<OurEvents>)->Name("queue/ours")->Arg(100);
BENCHMARK(RaiseAndDispatch<FloorEvents>)->Name("queue/floor")->Arg(100);
BENCHMARK(RaiseAndDispatch<FunctionEvents>)->Name("queue/functions")->Arg(100);
BENCHMARK(RaiseAndDispatch<BoostEvents>)->Name("queue/boost")->Arg(100);

/// Replaces the newest event of a random name among as many as are queued.
template <class Peer>
void RaiseLatest(benchmark::State& state) {
  const auto names = static_cast<std::size_t>(state.range(0));
  Peer peer(OrdinaryNames(names));
  const auto order = Shuffled(names);
  for (std::size_t name = 0; name < names; ++name) peer.RaiseLatest(name, {1.5, name});
  std::size_t next = 0;
  for (auto _ : state) {
    peer.RaiseLatest(order[next], {1.5, next});
    if (++next == names) next = 0;
  }
  peer.Dispatch();
}

BENCHMARK(RaiseLatest<OurEvents>)->Name("latest/ours")->Arg(10)->Arg(1000)->Arg(10'000);
BENCHMARK(RaiseLatest<FloorEvents>)->Name("latest/scan")->Arg(10)->Arg(1000)->Arg(10'000);

/// One event to many listeners, raised and dispatched.
template <class Peer>
void Deliver(benchmark::State& state) {
  const auto listeners = static_cast<std::size_t>(state.range(0));
  Peer peer(OrdinaryNames(1));
  for (std::size_t i = 0; i < listeners; ++i) peer.Subscribe(0);
  {
    const AllocationWatch watch(state);
    for (auto _ : state) {
      peer.Raise(0, {1.5, 1});
      peer.Dispatch();
    }
  }
  ExpectEvents(state, peer.sum, listeners);
}

BENCHMARK(Deliver<OurEvents>)->Name("deliver/ours")->Arg(1)->Arg(100);
BENCHMARK(Deliver<FunctionEvents>)->Name("deliver/functions")->Arg(1)->Arg(100);
BENCHMARK(Deliver<BoostEvents>)->Name("deliver/boost")->Arg(1)->Arg(100);

struct FloorListener {
  Sum* sum;
  const Reading* reading;
  static void Run(void* context) {
    const auto* self = static_cast<FloorListener*>(context);
    self->sum->Add(*self->reading);
  }
};

/// The least that a delivery can cost: a loop over an array, in another module.
void DeliverFloor(benchmark::State& state) {
  const auto listeners = static_cast<std::size_t>(state.range(0));
  Sum sum;
  const Reading reading{1.5, 1};
  FloorListener listener{&sum, &reading};
  const std::vector<FloorEntry> entries(listeners, FloorEntry{&FloorListener::Run, &listener});
  for (auto _ : state) {
    RunFromAfar(entries.data(), entries.size());
    benchmark::ClobberMemory();
  }
  ExpectEvents(state, sum, listeners);
}

BENCHMARK(DeliverFloor)->Name("deliver/floor")->Arg(1)->Arg(100);

constexpr std::size_t producers = 2;
constexpr std::uint64_t eventsPerProducer = 500'000;

/// Two threads raise, this one dispatches, until all has arrived. Checks that each thread's events
/// come in their order.
template <class Peer>
void RaiseFromThreads(benchmark::State& state) {
  for (auto _ : state) {
    Peer peer(OrdinaryNames(producers));
    for (std::size_t name = 0; name < producers; ++name) peer.Subscribe(name);
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (std::size_t name = 0; name < producers; ++name) {
      threads.emplace_back([&peer, name] {
        for (std::uint64_t i = 1; i <= eventsPerProducer; ++i) peer.Raise(name, {1.5, i});
      });
    }
    while (peer.sum.events < producers * eventsPerProducer) peer.Dispatch();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    for (auto& thread : threads) thread.join();
    const auto expected = producers * eventsPerProducer * (eventsPerProducer + 1) / 2;
    if (peer.sum.numbers != expected) state.SkipWithError("events were lost");
    state.SetIterationTime(took.count());
  }
}

BENCHMARK(RaiseFromThreads<OurEvents>)->Name("producers/ours")->UseManualTime()->Iterations(1);
BENCHMARK(RaiseFromThreads<FunctionEvents>)
    ->Name("producers/functions")
    ->UseManualTime()
    ->Iterations(1);

/// An idle pass that finds nothing to do.
void RunIdle(benchmark::State& state) {
  IdlePass idle([] {});
  static_cast<void>(DataBinding::IAppEventBroadcaster::GetInstance());
  const AllocationWatch watch(state);
  for (auto _ : state) idle.Run();
}

BENCHMARK(RunIdle)->Name("idlepass/ours");

}  // namespace

}  // namespace Benchmarks

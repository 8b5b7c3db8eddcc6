// SPDX-License-Identifier: Apache-2.0
/// Measures raising, replacing and delivering queued events.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "Allocations.h"
#include "EventPeers.h"
#include "Peers.h"

namespace Benchmarks {

/// Fails a benchmark when some of its events did not arrive.
inline void ExpectEvents(benchmark::State& state, const Sum& sum, std::size_t eventsPerIteration) {
  const auto expected = eventsPerIteration * static_cast<std::uint64_t>(state.iterations());
  if (sum.events != expected) state.SkipWithError("events were lost");
}

inline constexpr std::size_t eventsPerBatch = 1000;

/// Raises a batch over the names in turn and dispatches it.
template <class Peer>
void RaiseAndDispatch(benchmark::State& state) {
  const auto names = static_cast<std::size_t>(state.range(0));
  Peer peer(OrdinaryNames(names));
  for (std::size_t name = 0; name < names; ++name) peer.Subscribe(name);
  std::size_t next = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < eventsPerBatch; ++i) {
      peer.Raise(next, {1.5, i});
      if (++next == names) next = 0;
    }
    peer.Dispatch();
  }
  ExpectEvents(state, peer.sum, eventsPerBatch);
}

/// Replaces the newest event of a random name among as many as are queued.
template <class Peer>
void RaiseLatest(benchmark::State& state) {
  const auto names = static_cast<std::size_t>(state.range(0));
  Peer peer(OrdinaryNames(names));
  const auto order = Shuffled(names);
  for (std::size_t name = 0; name < names; ++name) {
    peer.Subscribe(name);
    peer.RaiseLatest(name, {1.5, name});
  }
  std::size_t next = 0;
  for (auto _ : state) {
    peer.RaiseLatest(order[next], {1.5, next});
    if (++next == names) next = 0;
  }
  peer.Dispatch();
  if (peer.sum.events != names) state.SkipWithError("events were not replaced");
}

/// Raises one event and dispatches it to many listeners.
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

inline constexpr std::uint64_t eventsPerProducer = 500'000;

/// Other threads raise and this one dispatches, until all events have arrived. Checks that none is
/// lost.
template <class Peer>
void RaiseFromThreads(benchmark::State& state) {
  const auto producers = static_cast<std::size_t>(state.range(0));
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

template <class Peer>
void EnterQueue(const std::string& peer) {
  auto& queue = Enter("queue", peer, &RaiseAndDispatch<Peer>);
  for (const int names : {1, 10, 100, 1000, 10'000}) queue.Arg(names);
  auto& producers = Enter("producers", peer, &RaiseFromThreads<Peer>);
  producers.UseManualTime()->Iterations(1)->Arg(1)->Arg(2);
  if constexpr (requires(Peer made, Reading reading) { made.RaiseLatest(0, reading); }) {
    Enter("latest", peer, &RaiseLatest<Peer>).Arg(10)->Arg(100)->Arg(1000)->Arg(10'000);
  }
}

template <class Peer>
void EnterDelivery(const std::string& peer) {
  Enter("deliver", peer, &Deliver<Peer>).Arg(1)->Arg(10)->Arg(100)->Arg(1000);
}

/// Enters all workloads under the peer's name. Gives true, so that the initialiser of a constant
/// can call it before main.
template <class Peer>
bool MeasureEvents(const std::string& peer) {
  EnterQueue<Peer>(peer);
  EnterDelivery<Peer>(peer);
  return true;
}

}  // namespace Benchmarks

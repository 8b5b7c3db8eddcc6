// SPDX-License-Identifier: Apache-2.0
/// Measures announcing: to growing numbers of listeners, with growing numbers of names, and from
/// two threads.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "Allocations.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

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

/// Announces the names in random order. Announced and registered names are equal, but separate
/// strings.
template <class Peer, Texts (*Names)(std::size_t)>
void BroadcastOneOfMany(benchmark::State& state) {
  const auto nameCount = static_cast<std::size_t>(state.range(0));
  const Texts texts = Names(nameCount);
  const auto registered = MakeNames<typename Peer::Name>(texts);
  const auto announced = MakeNames<typename Peer::Name>(texts, Shuffled(nameCount));
  Peer peer;
  Counter counter = 0;
  std::vector<typename Peer::Handle> handles;
  handles.reserve(nameCount);
  for (const auto& name : registered) handles.push_back(peer.Register(name, Increment{&counter}));
  for (const auto& name : registered) peer.Emit(name);  // some peers prepare a name at first use
  counter = 0;
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

/// A listener that works on memory of its thread, so that threads meet in the broadcast only.
struct IncrementOfThread {
  static inline thread_local Counter count = 0;
  void operator()() const { ++count; }
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
  IncrementOfThread::count = 0;
  for (auto _ : state) shared.peer.Emit(announced);
  ExpectCalls(state, IncrementOfThread::count, Shared<Peer>::listeners);
}

template <class Peer>
void EnterBroadcasts(const std::string& peer) {
  Enter("broadcast", peer, &Broadcast<Peer>).Arg(1)->Arg(10)->Arg(100)->Arg(1000);
  if constexpr (Peer::byName) {
    auto& names = Enter("names", peer, &BroadcastOneOfMany<Peer, OrdinaryNames>);
    for (const int count : {1, 10, 100, 1000, 10'000}) names.Arg(count);
  }
  if constexpr (Peer::threadSafe) {
    // This is long enough for the system to put the threads on different processors.
    Enter("threads", peer, &BroadcastFromThreads<Peer>)
        .Threads(1)
        ->Threads(2)
        ->UseRealTime()
        ->MinTime(0.1);
  }
}

}  // namespace Benchmarks

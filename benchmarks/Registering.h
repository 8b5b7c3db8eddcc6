// SPDX-License-Identifier: Apache-2.0
/// Measures registering and cancelling, beside listeners that stay and on a new object.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Allocations.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

/// Listeners that stay, all of one name or each of its own, and a random order to go through them.
template <class Peer>
class Crowd {
 public:
  struct Member {
    const typename Peer::Name* name;
    typename Peer::Handle* handle;
  };

  /// {listeners, names}
  explicit Crowd(const benchmark::State& state)
      : Crowd(static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1))) {}
  Crowd(std::size_t listeners, std::size_t nameCount)
      : names(MakeNames<typename Peer::Name>(OrdinaryNames(nameCount))), handles(listeners) {
    for (std::size_t i = 0; i < listeners; ++i) handles[i] = Register(names[i % nameCount]);
    for (const auto i : Shuffled(std::max(listeners, nameCount))) {
      members.push_back({&names[i % nameCount], i < listeners ? &handles[i] : nullptr});
    }
  }

  [[nodiscard]] typename Peer::Handle Register(const typename Peer::Name& name) {
    return peer.Register(name, Increment{&counter});
  }
  /// The handle is null when no listener stays.
  [[nodiscard]] const Member& Next() noexcept {
    if (next == members.size()) next = 0;
    return members[next++];
  }

 private:
  std::vector<typename Peer::Name> names;
  Counter counter = 0;
  Peer peer;
  std::vector<typename Peer::Handle> handles;
  std::vector<Member> members;
  std::size_t next = 0;
};

/// Each new listener is cancelled before the next one comes.
template <class Peer>
void RegisterAndCancel(benchmark::State& state) {
  Crowd<Peer> crowd(state);
  const AllocationWatch watch(state);
  for (auto _ : state) {
    const auto handle = crowd.Register(*crowd.Next().name);
    benchmark::ClobberMemory();
  }
}

/// A random listener is cancelled and a new one takes its place.
template <class Peer>
void CancelAndRegister(benchmark::State& state) {
  Crowd<Peer> crowd(state);
  const AllocationWatch watch(state);
  for (auto _ : state) {
    const auto& member = crowd.Next();
    *member.handle = typename Peer::Handle();
    *member.handle = crowd.Register(*member.name);
    benchmark::ClobberMemory();
  }
}

/// The whole life of an object that has one listener for a while.
template <class Peer>
void FirstListener(benchmark::State& state) {
  const typename Peer::Name name(oneName);
  Counter counter = 0;
  const AllocationWatch watch(state);
  for (auto _ : state) {
    Peer peer;
    auto handle = peer.Register(name, Increment{&counter});
    benchmark::DoNotOptimize(handle);
  }
}

/// Makes an object and registers a listener. Objects are made in batches, and end while the clock
/// stands still.
template <class Peer>
void FirstListenerOnly(benchmark::State& state) {
  constexpr std::size_t batch = 256;
  const typename Peer::Name name(oneName);
  Counter counter = 0;
  struct Object {
    Peer peer;
    typename Peer::Handle handle;
  };
  std::vector<std::optional<Object>> objects(batch);
  while (state.KeepRunningBatch(batch)) {
    for (auto& object : objects) {
      object.emplace();
      object->handle = object->peer.Register(name, Increment{&counter});
    }
    state.PauseTiming();
    for (auto& object : objects) object.reset();
    state.ResumeTiming();
  }
}

/// The whole life of an object that has no listener. A peer that can tell is asked whether it
/// has one.
template <class Peer>
void Idle(benchmark::State& state) {
  const typename Peer::Name name(oneName);
  const AllocationWatch watch(state);
  for (auto _ : state) {
    Peer peer;
    if constexpr (requires { peer.Heard(name); }) {
      benchmark::DoNotOptimize(peer.Heard(name));
    } else {
      benchmark::DoNotOptimize(peer);
    }
  }
}

template <class Peer>
void EnterRegistering(const std::string& peer) {
  Enter("first", peer, &FirstListener<Peer>);
  Enter("first/register", peer, &FirstListenerOnly<Peer>);
  Enter("idle", peer, &Idle<Peer>);
  auto& newest = Enter("register/newest", peer, &RegisterAndCancel<Peer>);
  auto& random = Enter("register/random", peer, &CancelAndRegister<Peer>);
  newest.Args({0, 1});
  for (auto* registering : {&newest, &random}) {
    registering->Args({1, 1})->Args({100, 1})->Args({10'000, 1});
    if constexpr (Peer::byName) registering->Args({100, 100})->Args({10'000, 10'000});
  }
}

}  // namespace Benchmarks

// SPDX-License-Identifier: Apache-2.0
/// Measures the memory of objects and listeners, in bytes.
///
/// The C library counts the bytes of the heap that are in use, with the allocator's own words and
/// its rounding, so it does not matter how a peer allocates. Objects stand side by side in an
/// array, as they would in their owners. Many are made at once, so that memory which a process sets
/// up once does not show.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

/// True when the C library counts the bytes in use.
#ifdef __GLIBC__
inline constexpr bool heapIsCounted = true;
#else
inline constexpr bool heapIsCounted = false;
#endif

/// The bytes of the heap that are in use.
[[nodiscard]] std::size_t HeapInUse() noexcept;

/// The bytes that `make(count)` takes on the heap while its result lives, divided by the count.
template <class Make>
double BytesOfEach(std::size_t count, Make make) {
  static_cast<void>(make(count));  // so that memory that is set up once does not count
  const std::size_t before = HeapInUse();
  const auto made = make(count);
  return static_cast<double>(HeapInUse() - before) / static_cast<double>(count);
}

inline constexpr std::size_t memorySample = 10'000;

template <class Object>
void MemoryOfObject(benchmark::State& state) {
  for (auto _ : state) {
    state.counters["bytes"] = BytesOfEach(
        memorySample, [](std::size_t count) { return std::make_unique<Object[]>(count); });
  }
}

/// Makes objects with as many listeners each, all of one name. The handles count, and the objects
/// themselves do not.
template <class Peer>
void MemoryOfListeners(benchmark::State& state) {
  const auto listeners = static_cast<std::size_t>(state.range(0));
  const typename Peer::Name name(oneName);
  Counter counter = 0;
  for (auto _ : state) {
    std::vector<std::unique_ptr<Peer[]>> crowds;
    crowds.reserve(2);
    crowds.push_back(std::make_unique<Peer[]>(memorySample / listeners));
    crowds.push_back(std::make_unique<Peer[]>(memorySample / listeners));
    auto crowd = crowds.begin();
    state.counters["bytes"] = BytesOfEach(memorySample, [&](std::size_t count) {
      const auto& peers = *crowd++;
      std::vector<typename Peer::Handle> handles(count);
      for (std::size_t i = 0; i < count; ++i) {
        handles[i] = peers[i / listeners].Register(name, Increment{&counter});
      }
      return handles;
    });
  }
}

/// Enters a benchmark if the C library counts the bytes in use.
template <class Object>
void EnterMemoryOfObject(const std::string& kind, const std::string& peer) {
  if (heapIsCounted) Enter("memory/" + kind, peer, &MemoryOfObject<Object>).Iterations(1);
}

template <class Peer>
void EnterMemory(const std::string& peer) {
  EnterMemoryOfObject<Peer>("idle", peer);
  if (!heapIsCounted) return;
  auto& listeners = Enter("memory/listener", peer, &MemoryOfListeners<Peer>);
  listeners.Iterations(1)->Arg(1)->Arg(10)->Arg(100)->Arg(1000);
}

}  // namespace Benchmarks

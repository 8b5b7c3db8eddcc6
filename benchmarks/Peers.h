// SPDX-License-Identifier: Apache-2.0
/// The peers that are measured side by side, under one interface: the library, and others that do
/// the same.
///
/// A peer that announces has
///   - a Name, and a Handle that cancels when it is dropped;
///   - Register(name, listener), Emit(name) and, where it can tell, Heard(name);
///   - byName: whether it looks the name up, or is one signal that ignores it;
///   - threadSafe: whether threads may announce one object's change at the same time.
/// The listeners of all peers do the same trivial work, see Increment. The workloads are templates
/// over peers; they are in Signals.h, and in Properties.h for peers that hold a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/signals2/signal.hpp>

#include "DataBinding/broadcast/IBroadcaster.h"
#include "FarFloor.h"

namespace Benchmarks {

using Counter = std::uint64_t;

struct Increment {
  Counter* counter;
  void operator()() const { ++*counter; }
};

/// Fails a benchmark whose listeners did not run as often as they should have.
inline void ExpectCalls(benchmark::State& state, Counter actual, std::size_t listeners) {
  const auto expected = listeners * static_cast<Counter>(state.iterations());
  if (actual != expected) state.SkipWithError("listeners did not run");
}

/// Enters a workload of a peer under both names, such as "broadcast/boost".
inline benchmark::internal::Benchmark& Enter(const std::string& workload, const std::string& peer,
                                             void (*run)(benchmark::State&)) {
  return *benchmark::RegisterBenchmark((workload + '/' + peer).c_str(), run);
}

/// Adds the version of a library to the head of the measurements.
inline bool Mention(const std::string& library, const std::string& version) {
  benchmark::AddCustomContext("library " + library, version);
  return true;
}

/// Ends the connection of a peer whose own handle does not end it. A Connection made by default has
/// nothing to end.
template <class Connection>
class Scoped {
 public:
  Scoped() = default;
  explicit Scoped(Connection made) : connection(std::move(made)) {}
  Scoped(Scoped&& other) noexcept : connection(std::exchange(other.connection, Connection())) {}
  Scoped& operator=(Scoped&& other) noexcept {
    if (this != &other) {
      connection.End();
      connection = std::exchange(other.connection, Connection());
    }
    return *this;
  }
  ~Scoped() { connection.End(); }

 private:
  Connection connection;
};

/// The least broadcaster that can be made.
class Announcer : public DataBinding::IBroadcaster {};

/// The library.
class Ours {
 public:
  using Name = DataBinding::VtrString;
  using Handle = DataBinding::Subscription;
  static constexpr bool byName = true;
  static constexpr bool threadSafe = true;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& name, Listener listener) {
    return announcer.Register(listener, name);
  }
  void Emit(const Name& name) { announcer.UpdateListeners(name); }
  [[nodiscard]] bool Heard(const Name& name) const { return announcer.AreListenersAvailable(name); }

 private:
  Announcer announcer;
};

/// The least that a broadcast can cost: a loop over an array, without names, threads or cancelling.
class Floor {
 public:
  using Name = std::wstring;
  struct Handle {};
  static constexpr bool byName = false;
  static constexpr bool threadSafe = false;

  [[nodiscard]] Handle Register(const Name& /*name*/, Increment listener) {
    entries.push_back({&Run, listener.counter});
    return {};
  }
  void Emit(const Name& /*name*/) const {
    for (const FloorEntry& entry : entries) entry.run(entry.context);
  }

 protected:
  std::vector<FloorEntry> entries;

 private:
  static void Run(void* context) { ++*static_cast<Counter*>(context); }
};

/// FarFloor measures what Floor does, but its loop is in one module and its listeners in another.
class FarFloor : public Floor {
 public:
  void Emit(const Name& /*name*/) const { RunFromAfar(entries.data(), entries.size()); }
};

/// A broadcaster that one would write in an hour: it copies the callbacks of a name for each
/// broadcast.
class Naive {
 public:
  using Name = std::wstring;
  static constexpr bool byName = true;
  static constexpr bool threadSafe = true;

  struct End {
    Name name;
    std::uint64_t id = 0;
    void operator()(Naive* registry) const { registry->Remove(name, id); }
  };
  using Handle = std::unique_ptr<Naive, End>;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& name, Listener listener) {
    const std::unique_lock guard(lock);
    listeners[name].emplace(++lastId, listener);
    return Handle(this, {name, lastId});
  }
  void Emit(const Name& name) {
    for (const auto& [id, listener] : Copy(name)) listener();
  }
  [[nodiscard]] bool Heard(const Name& name) const {
    const std::shared_lock guard(lock);
    return listeners.contains(name);
  }

 private:
  using Callbacks = std::unordered_map<std::uint64_t, std::function<void()>>;

  [[nodiscard]] Callbacks Copy(const Name& name) {
    const std::shared_lock guard(lock);
    const auto found = listeners.find(name);
    return found == listeners.end() ? Callbacks() : found->second;
  }
  void Remove(const Name& name, std::uint64_t id) {
    const std::unique_lock guard(lock);
    const auto found = listeners.find(name);
    found->second.erase(id);
    if (found->second.empty()) listeners.erase(found);
  }

  mutable std::shared_mutex lock;
  std::unordered_map<Name, Callbacks> listeners;
  std::uint64_t lastId = 0;
};

/// One Boost.Signals2 signal, held directly.
class BoostSignal {
 public:
  using Name = std::wstring;
  using Handle = boost::signals2::scoped_connection;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = true;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    return signal.connect(listener);
  }
  void Emit(const Name& /*name*/) { signal(); }
  [[nodiscard]] bool Heard(const Name& /*name*/) const { return !signal.empty(); }

 private:
  boost::signals2::signal<void()> signal;
};

/// One signal for each name, looked up for each operation. No lock protects the map itself.
template <class Signal>
class ByName {
 public:
  using Name = std::wstring;
  using Handle = typename Signal::Handle;
  static constexpr bool byName = true;
  static constexpr bool threadSafe = Signal::threadSafe;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& name, Listener listener) {
    return signals[name].Register(name, listener);
  }
  void Emit(const Name& name) {
    const auto found = signals.find(name);
    if (found != signals.end()) found->second.Emit(name);
  }
  [[nodiscard]] bool Heard(const Name& name) const {
    const auto found = signals.find(name);
    return found != signals.end() && found->second.Heard(name);
  }

 private:
  std::unordered_map<Name, Signal> signals;
};

}  // namespace Benchmarks

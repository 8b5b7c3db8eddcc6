/// Queues of named events side by side: the library and what one would use in its place.
///
/// A peer has Subscribe(name), Raise(name, reading) and Dispatch(). The listeners of all do the
/// same: they add up the numbers that they are given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/signals2/signal.hpp>

#include "DataBinding/AppEvent.h"
#include "Names.h"

namespace Benchmarks {

/// What an event carries.
struct Reading {
  double value = 0;
  std::uint64_t number = 0;
};

struct Sum {
  std::uint64_t numbers = 0;
  std::uint64_t events = 0;
  void Add(const Reading& reading) noexcept {
    numbers += reading.number;
    ++events;
  }
};

/// Fails a benchmark some of whose events did not arrive.
inline void ExpectEvents(benchmark::State& state, const Sum& sum, std::size_t eventsPerIteration) {
  const auto expected = eventsPerIteration * static_cast<std::uint64_t>(state.iterations());
  if (sum.events != expected) state.SkipWithError("events were lost");
}

/// Reports the time of one event.
inline void CountEvents(benchmark::State& state, std::size_t eventsPerIteration) {
  const auto events = static_cast<double>(eventsPerIteration);
  state.counters["per_event"] = {
      events, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert};
}

/// The library: typed events of the process's broadcaster.
class OurEvents {
 public:
  explicit OurEvents(const Texts& names) {
    for (const auto& name : names) events.emplace_back(DataBinding::VtrString(name.c_str()));
  }
  void Subscribe(std::size_t name) {
    handles.push_back(events[name].Subscribe([this](const Reading& reading) { sum.Add(reading); }));
  }
  void Raise(std::size_t name, const Reading& reading) { events[name].Raise(reading); }
  void RaiseLatest(std::size_t name, const Reading& reading) { events[name].RaiseLatest(reading); }
  void Dispatch() { DataBinding::IAppEventBroadcaster::GetInstance().DispatchPendingEvents(); }

  Sum sum;

 private:
  std::vector<DataBinding::AppEvent<Reading>> events;
  std::vector<DataBinding::Subscription> handles;
};

/// A lock and a vector of plain structures: no types, no cancelling, nobody to hold or to watch.
class FloorEvents {
 public:
  explicit FloorEvents(const Texts& texts) : names(texts), listeners(texts.size()) {}
  void Subscribe(std::size_t name) { listeners[name].push_back(&sum); }
  void Raise(std::size_t name, const Reading& reading) {
    const std::lock_guard guard(lock);
    queue.push_back({&names[name], name, reading});
  }
  /// Looks for the newest one of the name from the back.
  void RaiseLatest(std::size_t name, const Reading& reading) {
    const std::lock_guard guard(lock);
    for (auto entry = queue.rbegin(); entry != queue.rend(); ++entry) {
      if (*entry->name != names[name]) continue;
      queue.erase(std::next(entry).base());
      break;
    }
    queue.push_back({&names[name], name, reading});
  }
  void Dispatch() {
    {
      const std::lock_guard guard(lock);
      std::swap(queue, batch);
    }
    for (const auto& entry : batch) {
      for (Sum* listener : listeners[entry.number]) listener->Add(entry.reading);
    }
    batch.clear();
  }

  Sum sum;

 private:
  struct Entry {
    const std::wstring* name;
    std::size_t number;
    Reading reading;
  };

  Texts names;
  std::vector<std::vector<Sum*>> listeners;
  std::mutex lock;
  std::vector<Entry> queue;
  std::vector<Entry> batch;
};

/// Listeners as functions in a vector.
class FunctionList {
 public:
  void Add(std::function<void(const Reading&)> listener) {
    listeners.push_back(std::move(listener));
  }
  void operator()(const Reading& reading) const {
    for (const auto& listener : listeners) listener(reading);
  }

 private:
  std::vector<std::function<void(const Reading&)>> listeners;
};

/// Listeners of a Boost.Signals2 signal.
class SignalOfReadings {
 public:
  template <class Listener>
  void Add(Listener listener) {
    signal.connect(listener);
  }
  void operator()(const Reading& reading) { signal(reading); }

 private:
  boost::signals2::signal<void(const Reading&)> signal;
};

/// A lock and a vector of functions, each of which carries its event with its name.
template <class Listeners>
class ClosureEvents {
 public:
  explicit ClosureEvents(const Texts& texts) : names(texts), listeners(texts.size()) {}
  void Subscribe(std::size_t name) {
    listeners[name].Add([this](const Reading& reading) { sum.Add(reading); });
  }
  void Raise(std::size_t name, const Reading& reading) {
    std::function<void()> event = [this, text = names[name], name, reading] {
      benchmark::DoNotOptimize(text.data());
      listeners[name](reading);
    };
    const std::lock_guard guard(lock);
    queue.push_back(std::move(event));
  }
  void Dispatch() {
    {
      const std::lock_guard guard(lock);
      std::swap(queue, batch);
    }
    for (const auto& event : batch) event();
    batch.clear();
  }

  Sum sum;

 private:
  Texts names;
  std::vector<Listeners> listeners;
  std::mutex lock;
  std::vector<std::function<void()>> queue;
  std::vector<std::function<void()>> batch;
};

using FunctionEvents = ClosureEvents<FunctionList>;
using BoostEvents = ClosureEvents<SignalOfReadings>;

inline constexpr std::size_t eventsPerBatch = 1000;

/// Raises a batch over the names in turn and dispatches it.
template <class Peer>
void RaiseAndDispatch(benchmark::State& state) {
  const auto names = static_cast<std::size_t>(state.range(0));
  Peer peer(OrdinaryNames(names));
  for (std::size_t name = 0; name < names; ++name) peer.Subscribe(name);
  for (auto _ : state) {
    for (std::size_t i = 0; i < eventsPerBatch; ++i) peer.Raise(i % names, {1.5, i});
    peer.Dispatch();
  }
  ExpectEvents(state, peer.sum, eventsPerBatch);
  CountEvents(state, eventsPerBatch);
}

}  // namespace Benchmarks

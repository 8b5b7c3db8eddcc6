// SPDX-License-Identifier: Apache-2.0
/// Queues of named events under one interface: the library, and what one would use in its place.
///
/// A peer has Subscribe(name), Raise(name, reading), Dispatch() and, if it can replace the newest
/// event of a name, RaiseLatest(name, reading). Any thread may raise; the other operations belong
/// to the thread that dispatches. The listeners of all peers add up the numbers that they are
/// given. The workloads are in EventWorkloads.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "DataBinding/appevents/AppEvent.h"
#include "Names.h"

namespace Benchmarks {

/// The argument of an event.
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

/// A lock and a vector of plain structures, without types, cancelling, holds and hooks.
class FloorEvents {
 public:
  explicit FloorEvents(const Texts& texts) : names(texts), listeners(texts.size()) {}
  void Subscribe(std::size_t name) { listeners[name].push_back(&sum); }
  void Raise(std::size_t name, const Reading& reading) {
    const std::lock_guard guard(lock);
    queue.push_back({&names[name], name, reading});
  }
  /// Searches from the back for the newest event of the name.
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

}  // namespace Benchmarks

// SPDX-License-Identifier: Apache-2.0
// Workloads of the event queues that need no library but Boost and this one.

#include <cstddef>
#include <functional>
#include <vector>

#include <boost/signals2/signal.hpp>

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/IdlePass.h"
#include "EventWorkloads.h"
#include "FarFloor.h"

namespace Benchmarks {

namespace {

/// Keeps the listeners as functions in a vector.
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

/// Keeps the listeners in a Boost.Signals2 signal.
class BoostReadings {
 public:
  template <class Listener>
  void Add(Listener listener) {
    signal.connect(listener);
  }
  void operator()(const Reading& reading) { signal(reading); }

 private:
  boost::signals2::signal<void(const Reading&)> signal;
};

[[maybe_unused]] const bool eventsMeasured[] = {
    MeasureEvents<OurEvents>("ours"),
    MeasureEvents<ClosureEvents<FunctionList>>("functions"),
    MeasureEvents<ClosureEvents<BoostReadings>>("boost"),
};

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

[[maybe_unused]] const bool floorMeasured = [] {
  EnterQueue<FloorEvents>("floor");
  Enter("deliver", "floor", &DeliverFloor).Arg(1)->Arg(10)->Arg(100)->Arg(1000);
  return true;
}();

/// An idle pass that finds nothing to do.
void RunIdle(benchmark::State& state) {
  DataBinding::IdlePass idle([] {});
  static_cast<void>(DataBinding::IAppEventBroadcaster::GetInstance());
  const AllocationWatch watch(state);
  for (auto _ : state) idle.Run();
}

BENCHMARK(RunIdle)->Name("idlepass/ours");

}  // namespace

}  // namespace Benchmarks

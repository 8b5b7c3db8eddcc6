// SPDX-License-Identifier: Apache-2.0
// Every workload of libsigc++.

#include "EventWorkloads.h"
#include "Properties.h"
#include "SigcSignal.h"
#include "Signals.h"

namespace Benchmarks {

namespace {

/// Listeners of a signal that carries a reading.
class SigcReadings {
 public:
  template <class Listener>
  void Add(Listener listener) {
    signal.connect(listener);
  }
  void operator()(const Reading& reading) { signal.emit(reading); }

 private:
  sigc::signal<void(const Reading&)> signal;
};

[[maybe_unused]] const bool sigcPeersMeasured[] = {
    Mention("libsigc++", std::to_string(SIGCXX_MAJOR_VERSION) + '.' +
                             std::to_string(SIGCXX_MINOR_VERSION) + '.' +
                             std::to_string(SIGCXX_MICRO_VERSION)),
    MeasureSignal<SigcSignal>("sigc"),
    MeasureSignal<ByName<SigcSignal>>("sigcmap"),
    MeasureProperty<SignalProperty<SigcSignal>>("sigc"),
    MeasureEvents<ClosureEvents<SigcReadings>>("sigc"),
};

}  // namespace

}  // namespace Benchmarks

// SPDX-License-Identifier: Apache-2.0
// Every workload of sigslot, whose signals threads may share.

#include <sigslot/signal.hpp>

#include <string>

#include "Properties.h"
#include "Signals.h"

namespace Benchmarks {

namespace {

class SigslotSignal {
 public:
  using Name = std::wstring;
  using Handle = sigslot::scoped_connection;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = true;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    return signal.connect(listener);
  }
  void Emit(const Name& /*name*/) { signal(); }
  [[nodiscard]] bool Heard(const Name& /*name*/) const { return signal.slot_count() != 0; }

 private:
  mutable sigslot::signal<> signal;  // its question is not const
};

[[maybe_unused]] const bool sigslotPeersMeasured[] = {
    MeasureSignal<SigslotSignal>("sigslot"),
    MeasureSignal<ByName<SigslotSignal>>("sigslotmap"),
    MeasureProperty<SignalProperty<SigslotSignal>>("sigslot"),
};

}  // namespace

}  // namespace Benchmarks

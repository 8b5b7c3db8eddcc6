// SPDX-License-Identifier: Apache-2.0
/// Measures the way from setting a property to the function that shows it.
///
/// A peer holds a property and a function that is joined to it: Set(number) sets the property, and
/// Shown() gives the number that the function was given last.
#pragma once

#include <string>

#include "Allocations.h"
#include "Peers.h"

namespace Benchmarks {

template <class Peer>
void SetToWidget(benchmark::State& state) {
  Peer peer;
  double wanted = 0.0;
  const AllocationWatch watch(state);
  for (auto _ : state) {
    wanted += 0.5;
    peer.Set(wanted);
    benchmark::ClobberMemory();
  }
  if (peer.Shown() != wanted) state.SkipWithError("the widget was not told");
}

template <class Peer>
bool MeasureBind(const std::string& peer) {
  Enter("bind", peer, &SetToWidget<Peer>);
  return true;
}

}  // namespace Benchmarks

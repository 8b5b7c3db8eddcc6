// SPDX-License-Identifier: Apache-2.0
/// Every workload of a peer that announces.
#pragma once

#include <string>

#include "Broadcasting.h"
#include "Memory.h"
#include "Registering.h"

namespace Benchmarks {

/// Enters them all under the peer's name. True, for a constant that runs this before main.
template <class Peer>
bool MeasureSignal(const std::string& peer) {
  EnterBroadcasts<Peer>(peer);
  EnterRegistering<Peer>(peer);
  EnterMemory<Peer>(peer);
  return true;
}

}  // namespace Benchmarks

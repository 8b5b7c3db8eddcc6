// SPDX-License-Identifier: Apache-2.0
/// Enters every workload of an announcing peer.
#pragma once

#include <string>

#include "Broadcasting.h"
#include "Memory.h"
#include "Registering.h"

namespace Benchmarks {

/// Enters all workloads under the peer's name. Gives true, so that the initialiser of a constant
/// can call it before main.
template <class Peer>
bool MeasureSignal(const std::string& peer) {
  EnterBroadcasts<Peer>(peer);
  EnterRegistering<Peer>(peer);
  EnterMemory<Peer>(peer);
  return true;
}

}  // namespace Benchmarks

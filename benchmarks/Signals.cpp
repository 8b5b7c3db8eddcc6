// SPDX-License-Identifier: Apache-2.0
// Workloads of the announcing peers that need no library but Boost and this one.

#include "Signals.h"

#include <string>

#include <boost/version.hpp>

namespace Benchmarks {

namespace {

using BoostMap = ByName<BoostSignal>;

[[maybe_unused]] const bool signalsMeasured[] = {
    Mention("Boost", BOOST_LIB_VERSION), MeasureSignal<Ours>("ours"),
    MeasureSignal<Naive>("naive"),       MeasureSignal<BoostSignal>("boost"),
    MeasureSignal<BoostMap>("boostmap"),
};

/// The floors cancel nothing and find nothing.
[[maybe_unused]] const bool floorsMeasured = [] {
  EnterBroadcasts<Floor>("floor");
  EnterBroadcasts<FarFloor>("farfloor");
  return true;
}();

/// Names that a hash finds hard to tell apart.
template <class Peer>
bool MeasureHardNames(const std::string& peer) {
  Enter("names/numbered", peer, &BroadcastOneOfMany<Peer, NumberedNames>).Arg(10'000);
  Enter("names/alike", peer, &BroadcastOneOfMany<Peer, AlikeNames>).Arg(10'000);
  return true;
}

[[maybe_unused]] const bool hardNamesMeasured[] = {
    MeasureHardNames<Ours>("ours"),
    MeasureHardNames<BoostMap>("boostmap"),
};

}  // namespace

}  // namespace Benchmarks

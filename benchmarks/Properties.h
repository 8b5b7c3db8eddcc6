// SPDX-License-Identifier: Apache-2.0
/// Properties that hold a number and announce its changes.
///
/// A peer has a Handle, Register(listener), Set(number) and, if its property is found by name,
/// Get(). Set and Get reach the property in the way that the peer measures. Equal values are not
/// announced.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Allocations.h"
#include "Memory.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

/// A value beside a signal, as one writes it by hand.
template <class Signal>
class SignalProperty {
 public:
  using Handle = typename Signal::Handle;

  [[nodiscard]] Handle Register(Increment listener) { return signal.Register(name, listener); }
  void Set(double wanted) {
    if (number == wanted) return;
    number = wanted;
    signal.Emit(name);
  }

 private:
  // A signal ignores the name. It is shared, so that it does not count as memory of the property.
  static inline const typename Signal::Name name{oneName};

  double number = 0;
  Signal signal;
};

template <class Property>
void SetProperty(benchmark::State& state) {
  const auto listeners = static_cast<std::size_t>(state.range(0));
  Property property;
  Counter counter = 0;
  std::vector<typename Property::Handle> handles;
  for (std::size_t i = 0; i < listeners; ++i) {
    handles.push_back(property.Register(Increment{&counter}));
  }
  double wanted = 0.0;
  {
    const AllocationWatch watch(state);
    for (auto _ : state) {
      wanted += 0.5;
      property.Set(wanted);
      benchmark::ClobberMemory();
    }
  }
  ExpectCalls(state, counter, listeners);
}

template <class Property>
void GetProperty(benchmark::State& state) {
  Property property;
  const AllocationWatch watch(state);
  for (auto _ : state) benchmark::DoNotOptimize(property.Get());
}

template <class Property>
bool MeasureProperty(const std::string& peer) {
  Enter("set", peer, &SetProperty<Property>).Arg(1)->Arg(10)->Arg(100)->Arg(1000);
  EnterMemoryOfObject<Property>("property", peer);
  if constexpr (requires(Property property) { property.Get(); }) {
    Enter("get", peer, &GetProperty<Property>);
  }
  return true;
}

}  // namespace Benchmarks

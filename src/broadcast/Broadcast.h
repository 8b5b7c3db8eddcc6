// SPDX-License-Identifier: Apache-2.0
/// A Broadcast is one run of a listener array; BroadcastToAny is one whose listeners take the name.
///
/// Begin is called under the registry's lock, and notes what the array shows at that moment. Run
/// calls the listeners with no lock held. The end of the object ends the run.
#pragma once

#include <atomic>
#include <cstdint>

#include "GuardedRun.h"
#include "ListenerPin.h"

namespace DataBinding::details {

class Broadcast {
 public:
  /// The caller holds the registry's lock.
  void Begin(ListenerArray& array, WListenersImpl& registry, ReaderRecord* record) noexcept {
    loop = array.Loop();
    count = array.Count();
    lastRemoval = array.LastRemoval();
    skipsRemoved = array.HasRemoved();
    pin.Take(array, registry, record);
  }
  void Run() {
    if (const ListenerArray* array = pin.Get()) {
      RunGuarded(skipsRemoved ? &StepOverRemoved : &Step, this, array->Property());
    }
  }

 protected:
  /// Calls the listener of each position that was registered when the run began. The next position
  /// is stored before, so that a listener which throws or faults counts as called.
  template <class Call>
  void CallRegistered(Call call) {
    const ListenerArray& array = *pin.Get();
    auto& next = pin.Next();
    for (std::uint32_t i = next.load(std::memory_order_relaxed); i < count; ++i) {
      const auto removal = array.Marks()[i].removal.load(std::memory_order_relaxed);
      next.store(i, std::memory_order_release);
      if (removal > lastRemoval) call(array, next, i);
    }
  }

  ListenerPin pin;

 private:
  /// Both steps store the next position before they call a listener, so that a listener which
  /// throws or faults counts as called. An array without removed listeners needs no look at the
  /// marks, which makes the first step faster.
  static void Step(void* context) {
    auto& self = *static_cast<Broadcast*>(context);
    auto& next = self.pin.Next();
    if (next.load(std::memory_order_relaxed) == self.count) return;
    self.loop(self.pin.Get()->Listeners(), &next, self.count);
  }
  static void StepOverRemoved(void* context) {
    auto& self = *static_cast<Broadcast*>(context);
    self.CallRegistered([&](const ListenerArray& array, auto& next, std::uint32_t i) {
      self.loop(array.Listeners(), &next, i + 1);
    });
  }

  BindStateBase::CallLoop loop = nullptr;
  std::uint32_t count = 0;
  std::uint64_t lastRemoval = 0;
  bool skipsRemoved = false;
};

/// The run of the listeners to any property, which are called with the name.
class BroadcastToAny : public Broadcast {
 public:
  explicit BroadcastToAny(const VtrString& announced) noexcept : name(announced) {}
  void Run() {
    if (pin.Get() != nullptr) RunGuarded(&Step, this, name);
  }

 private:
  static void Step(void* context) {
    auto& self = *static_cast<BroadcastToAny*>(context);
    self.CallRegistered([&](const ListenerArray& array, auto& next, std::uint32_t i) {
      next.store(i + 1, std::memory_order_release);
      // The position is stored before the function is loaded: see ReaderRecord::FenceOthers.
      std::atomic_signal_fence(std::memory_order_seq_cst);
      array.CallWithName(i, self.name);
    });
  }

  const VtrString& name;
};

}  // namespace DataBinding::details

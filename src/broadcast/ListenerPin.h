// SPDX-License-Identifier: Apache-2.0
/// A ListenerPin keeps a listener array as it is for as long as a broadcast runs it.
///
/// The pin stands in the record of the running thread, so that pinning an array writes no memory
/// that other threads write. A writer that has to know when the run ends hands the pin over: it
/// marks the pin and counts a report for the array, and at its end the broadcast reports to the
/// registry. When the thread has no free pin in its record, a report is counted from the start.
///
/// The pin also shows which listener is being called. A thread that ends a listener and waits for
/// its call looks at the pins of the other threads. docs/how-it-works.md, "The broadcast protocol",
/// tells why each step is needed.
#pragma once

#include <atomic>
#include <cstdint>

#include "ListenerArray.h"
#include "ReaderRecord.h"

namespace DataBinding::details {

class WListenersImpl;

class ListenerPin {
 public:
  ListenerPin() noexcept = default;
  ListenerPin(const ListenerPin&) = delete;
  ListenerPin& operator=(const ListenerPin&) = delete;
  ~ListenerPin() { Release(); }

  /// Pins an array. The caller holds the registry's lock, for reading at least. Pins of one thread
  /// end in the reverse order.
  void Take(ListenerArray& pinned, WListenersImpl& itsRegistry, ReaderRecord* ofThread) noexcept {
    array = &pinned;
    registry = &itsRegistry;
    if (ofThread == nullptr) return TakeWithoutPlace();
    for (auto& each : ofThread->pins) {
      if (each.array.load(std::memory_order_relaxed) != 0) continue;
      pin = &each;
      next = &each.next;
      next->store(0, std::memory_order_release);
      pin->array.store(reinterpret_cast<std::uintptr_t>(array), std::memory_order_release);
      return;
    }
    TakeWithoutPlace();
  }
  [[nodiscard]] ListenerArray* Get() const noexcept { return array; }
  /// Returns the position that the run comes to next, to be read and changed.
  [[nodiscard]] std::atomic<std::uint32_t>& Next() noexcept { return *next; }

  /// Makes every running broadcast of the array report its end, and returns how many reports are
  /// due. The caller holds the registry's write lock, so that no broadcast begins meanwhile.
  static std::uint32_t HandOver(ListenerArray& array, WListenersImpl& registry) noexcept;
  /// Returns true while another thread is calling the listener at a position. The listener must
  /// have been silenced, so that no new call of it begins.
  ///
  /// It is not always possible to see the call itself. If the other threads were not fenced after
  /// the silencing, the answer is true until their runs have passed the position. If a run has no
  /// pin in its thread's record, it is true until that run is over. The caller has counted a report
  /// for the array, so that the array stays.
  static bool IsCalledElsewhere(const ListenerArray& array, std::uint32_t position,
                                bool fenced) noexcept;

 private:
  void TakeWithoutPlace() noexcept;
  void Release() noexcept;

  ListenerArray* array = nullptr;
  WListenersImpl* registry = nullptr;
  /// Points to the place in the thread's record. It is null if none was free: then a report was
  /// counted from the start.
  ReaderRecord::Pin* pin = nullptr;
  std::atomic<std::uint32_t>* next = &ownNext;
  std::atomic<std::uint32_t> ownNext{0};
  /// Links this thread's pins that found no place, from the innermost one outwards.
  ListenerPin* outer = nullptr;
};

}  // namespace DataBinding::details

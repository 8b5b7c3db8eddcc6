// SPDX-License-Identifier: Apache-2.0
/// Keeps a listener array as it is for as long as a broadcast runs it.
///
/// The pin stands in the thread's record, so that pinning writes no shared memory. A writer that
/// must know when the run ends hands the pin over: it counts a report on the array and a keeper of
/// the registry, and marks the pin; the broadcast then reports to the registry at its end. A thread
/// without a free place in its record reports from the start.
///
/// The pin also shows which listener is being called: a thread that ends a listener and waits looks
/// at the pins of the others.
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

  /// Pins an array. The caller holds the registry's lock. Nested pins end in reverse order.
  void Take(ListenerArray& pinned, WListenersImpl& itsRegistry, ReaderRecord* ofThread) noexcept;
  [[nodiscard]] ListenerArray* Get() const noexcept { return array; }
  /// How far the run has come.
  [[nodiscard]] std::atomic<std::uint32_t>& Next() noexcept { return *next; }

  /// Makes every running broadcast of the array report its end, and tells how many there are. The
  /// caller holds the registry's write lock.
  static std::uint32_t HandOver(ListenerArray& array, WListenersImpl& registry) noexcept;
  /// True while another thread is in the call of the listener at a position, which new calls do
  /// nothing at. Where the others were not fenced since then, or a run has no place in its thread's
  /// record, true as well until the run has passed the position, or is over. The caller keeps the
  /// array from ending.
  static bool IsCalledElsewhere(const ListenerArray& array, std::uint32_t position,
                                bool fenced) noexcept;

 private:
  void Release() noexcept;

  ListenerArray* array = nullptr;
  WListenersImpl* registry = nullptr;
  /// Its place in the thread's record; null for one that was counted as a report from the start.
  ReaderRecord::Pin* pin = nullptr;
  std::atomic<std::uint32_t>* next = &ownNext;
  std::atomic<std::uint32_t> ownNext{0};
  /// The next one out of this thread's pins without a place.
  ListenerPin* outer = nullptr;
};

}  // namespace DataBinding::details

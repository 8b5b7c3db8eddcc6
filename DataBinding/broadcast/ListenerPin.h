/// Keeps a listener array as it is for as long as a broadcast runs it.
///
/// The pin stands in the thread's record, so that pinning writes no shared memory. A writer that
/// must know when the run ends hands the pin over: it counts a report on the array and a keeper of
/// the registry, and marks the pin; the broadcast then reports to the registry at its end. A thread
/// without a free place in its record reports from the start.
#pragma once

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

  /// Pins an array. The caller holds the registry's lock.
  void Take(ListenerArray& pinned, WListenersImpl& owner, ReaderRecord* ofThread) noexcept;
  [[nodiscard]] ListenerArray* Get() const noexcept { return array; }

  /// Makes every running broadcast of the array report its end, and tells how many there are. The
  /// caller holds the registry's write lock.
  static std::uint32_t HandOver(ListenerArray& array, WListenersImpl& owner) noexcept;

 private:
  void Release() noexcept;

  ListenerArray* array = nullptr;
  WListenersImpl* registry = nullptr;
  /// Its place in the thread's record; null for one that was counted as a report from the start.
  ReaderRecord::Pin* pin = nullptr;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A ReaderRecord shows which broadcasts a thread is in. Each thread has one and writes it; the
/// writers of all registries read it.
///
/// While a thread looks listeners up, its record names the registry's lock. While it runs a
/// listener array, a pin in its record names the array. Each record has cache lines of its own, so
/// a broadcast writes no memory that another thread's broadcast reads or writes, and two threads
/// that announce one property do not slow each other down. The idea is that of biased reader/writer
/// locks (Dice and Kogan, USENIX ATC 2019) and of hazard pointers (Michael, IEEE TPDS 2004).
///
/// A thread gets its record at its first broadcast and gives it back when it ends, for a later
/// thread to take over. Records are never freed, because writers walk their list without a lock.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace DataBinding::details {

class alignas(64) ReaderRecord {
 public:
  /// So many nested broadcasts of one thread can be pinned in its record.
  static constexpr std::size_t mostPins = 6;
  /// A writer sets this bit in a pin to have the broadcast report its end.
  static constexpr std::uintptr_t handedOver = 1;
  struct Pin {
    /// Holds the address of the pinned array, or 0. Only the thread itself sets and clears it;
    /// writers may add the bit `handedOver`.
    std::atomic<std::uintptr_t> array{0};
    /// While the thread calls a listener, this is the position behind that listener.
    std::atomic<std::uint32_t> next{0};
  };

  /// Returns the calling thread's record, and makes it if the thread has none. The result is null
  /// when there is no memory, or the thread is ending.
  [[nodiscard]] static ReaderRecord* Current() noexcept {
    return ofThread != nullptr ? ofThread : MakeCurrent();
  }

  /// Returns the calling thread's record, or null if it has none. This serves callers that must not
  /// allocate.
  [[nodiscard]] static ReaderRecord* Existing() noexcept { return ofThread; }

  /// Returns the first of all records. Next leads to the others.
  [[nodiscard]] static ReaderRecord* First() noexcept;
  [[nodiscard]] ReaderRecord* Next() const noexcept { return next; }

  /// Names the registry lock that this thread holds for reading, or is null.
  std::atomic<const void*> reading{nullptr};
  /// Show the arrays that this thread runs.
  std::array<Pin, mostPins> pins{};
  /// Returns true while the thread runs listeners of an array that is pinned here.
  [[nodiscard]] bool IsPinning() const noexcept {
    return std::any_of(pins.begin(), pins.end(), [](const Pin& pin) {
      return pin.array.load(std::memory_order_relaxed) != 0;
    });
  }

  /// Makes every other thread of the process pass a memory fence, so that threads which run
  /// listeners need no fence of their own. When this returns, the calling thread sees what the
  /// others wrote before their fence, and they see what it wrote before the call. False if the
  /// system cannot do that.
  static bool FenceOthers() noexcept;

 private:
  friend class ReaderRecordOwner;
  /// Gets a record for the thread, which is given back when the thread ends.
  [[nodiscard]] static ReaderRecord* MakeCurrent() noexcept;
  [[nodiscard]] static ReaderRecord* Acquire() noexcept;
  void GiveBack() noexcept { taken.store(false, std::memory_order_release); }

  static constinit thread_local ReaderRecord* ofThread;

  std::atomic<bool> taken{true};
  ReaderRecord* next = nullptr;
};

}  // namespace DataBinding::details

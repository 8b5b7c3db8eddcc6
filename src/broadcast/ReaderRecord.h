// SPDX-License-Identifier: Apache-2.0
/// What each thread says of the broadcasts that it is in: one record a thread, in cache lines of
/// its own, written by that thread and read by writers of any registry.
///
/// A thread that looks listeners up says in which registry; a thread that runs a listener array
/// says which one, in a pin. So a broadcast writes no memory that another thread's broadcast writes
/// or reads, and two threads that announce one property do not slow each other down. The idea is
/// that of biased reader/writer locks (Dice and Kogan, USENIX ATC 2019) and of hazard pointers
/// (Michael, IEEE TPDS 2004).
///
/// Records are made at a thread's first broadcast, taken over by later threads when theirs ends,
/// and never freed.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace DataBinding::details {

class alignas(64) ReaderRecord {
 public:
  /// How many broadcasts of one thread may nest and still be pinned here.
  static constexpr std::size_t mostPins = 6;
  /// Set in a pin by a writer that counts on being told when the run ends.
  static constexpr std::uintptr_t handedOver = 1;
  struct Pin {
    /// The array, as an address; 0 for none. Only the thread itself sets one.
    std::atomic<std::uintptr_t> array{0};
    /// The position behind the listener that the thread is calling.
    std::atomic<std::uint32_t> next{0};
  };

  /// The calling thread's record, made at its first broadcast, or null when there is no memory or
  /// the thread is ending.
  [[nodiscard]] static ReaderRecord* Current() noexcept {
    return ofThread != nullptr ? ofThread : MakeCurrent();
  }

  /// The calling thread's record if it has one: for what must not allocate.
  [[nodiscard]] static ReaderRecord* Existing() noexcept { return ofThread; }

  /// The first of all records; Next leads to the others.
  [[nodiscard]] static ReaderRecord* First() noexcept;
  [[nodiscard]] ReaderRecord* Next() const noexcept { return next; }

  /// The registry lock under which this thread looks something up, or null.
  std::atomic<const void*> reading{nullptr};
  /// The arrays that this thread runs.
  std::array<Pin, mostPins> pins{};
  /// True while the thread runs listeners of an array that is pinned here.
  [[nodiscard]] bool IsPinning() const noexcept {
    return std::any_of(pins.begin(), pins.end(), [](const Pin& pin) {
      return pin.array.load(std::memory_order_relaxed) != 0;
    });
  }

  /// Has every other thread of the process pass a memory fence, so that threads which run listeners
  /// need none: what they wrote before is seen now, and they see what this thread wrote. False
  /// where the system cannot do that.
  static bool FenceOthers() noexcept;

 private:
  friend class ReaderRecordOwner;
  /// Sees to it that the record is given back when the thread ends.
  [[nodiscard]] static ReaderRecord* MakeCurrent() noexcept;
  [[nodiscard]] static ReaderRecord* Acquire() noexcept;
  void GiveBack() noexcept { taken.store(false, std::memory_order_release); }

  static constinit thread_local ReaderRecord* ofThread;

  std::atomic<bool> taken{true};
  ReaderRecord* next = nullptr;
};

}  // namespace DataBinding::details

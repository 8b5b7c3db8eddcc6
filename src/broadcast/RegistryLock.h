// SPDX-License-Identifier: Apache-2.0
/// A RegistryLock is the reader/writer lock of a listener registry. It is built so that readers on
/// different threads write no common memory.
///
/// A reader names the lock in its thread's record, and then looks whether a writer has announced
/// itself. A writer announces itself, and then waits until no record names the lock. Both do this
/// in sequentially consistent order, so that at least one of them sees the other. A reader that
/// meets a writer, or has no record, takes the lock as a writer does instead, but does not announce
/// itself.
///
/// A reader looks something up and calls no callback, so writers wait for readers only briefly, by
/// yielding. Who waits for the lock itself sleeps until the one that holds it wakes the next; on
/// Windows it asks again and again, since notifications of libstdc++ may be lost there. The lock is
/// not recursive.
#pragma once

#include <atomic>
#include <cstdint>

#include "DataBinding/Export.h"
#include "ReaderRecord.h"

namespace DataBinding::details {

class DATABINDING_THREAD_ANNOTATION(capability("mutex")) RegistryLock {
 public:
  RegistryLock() = default;
  RegistryLock(const RegistryLock&) = delete;
  RegistryLock& operator=(const RegistryLock&) = delete;
  ~RegistryLock() = default;

 private:
  friend class RegistryReadLock;
  friend class RegistryWriteLock;

  /// The bits of the lock's one word.
  enum : std::uint32_t { TakenBit = 1, WritingBit = 2, AwaitedBit = 4 };

  void Take(std::uint32_t bits) noexcept {
    std::uint32_t isFree = 0;
    if (!word.compare_exchange_strong(isFree, bits, std::memory_order_seq_cst)) Await(bits);
  }
  void Leave() noexcept {
    // Another thread may have freed the lock when this one wakes the next: that uses the address
    // alone.
    if ((word.exchange(0, std::memory_order_release) & AwaitedBit) != 0) word.notify_one();
  }
  [[nodiscard]] bool IsWriting() const noexcept {
    return (word.load(std::memory_order_seq_cst) & WritingBit) != 0;
  }
  void Await(std::uint32_t bits) noexcept;
  void WaitForReaders() const noexcept;

  std::atomic<std::uint32_t> word{0};
};

class DATABINDING_THREAD_ANNOTATION(scoped_lockable) RegistryReadLock {
 public:
  [[nodiscard]] RegistryReadLock(RegistryLock& taken, ReaderRecord* ofThread)
      DATABINDING_THREAD_ANNOTATION(acquire_shared_capability(taken))
      : lock(taken), record(ofThread) {
    if (record != nullptr) {
      record->reading.store(&lock, std::memory_order_seq_cst);
      if (!lock.IsWriting()) return;
      record->reading.store(nullptr, std::memory_order_release);
      record = nullptr;
    }
    lock.Take(RegistryLock::TakenBit);
  }
  RegistryReadLock(const RegistryReadLock&) = delete;
  RegistryReadLock& operator=(const RegistryReadLock&) = delete;
  ~RegistryReadLock() DATABINDING_THREAD_ANNOTATION(release_capability()) {
    if (record != nullptr) {
      record->reading.store(nullptr, std::memory_order_release);
    } else {
      lock.Leave();
    }
  }

 private:
  RegistryLock& lock;
  ReaderRecord* record;
};

class DATABINDING_THREAD_ANNOTATION(scoped_lockable) RegistryWriteLock {
 public:
  [[nodiscard]] explicit RegistryWriteLock(RegistryLock& taken)
      DATABINDING_THREAD_ANNOTATION(acquire_capability(taken))
      : lock(taken) {
    lock.Take(RegistryLock::TakenBit | RegistryLock::WritingBit);
    lock.WaitForReaders();
  }
  RegistryWriteLock(const RegistryWriteLock&) = delete;
  RegistryWriteLock& operator=(const RegistryWriteLock&) = delete;
  ~RegistryWriteLock() DATABINDING_THREAD_ANNOTATION(release_capability()) { lock.Leave(); }

 private:
  RegistryLock& lock;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A RegistryLock is the reader/writer lock of a listener registry. It is built so that readers on
/// different threads write no common memory.
///
/// A reader names the lock in its thread's record, and then looks whether a writer has announced
/// itself. A writer announces itself, and then waits until no record names the lock. Both do this
/// in sequentially consistent order, so that at least one of them sees the other. A reader that
/// meets a writer, or has no record, locks the mutex of the writers instead.
///
/// A reader looks something up and calls no callback, so writers wait only briefly, by yielding.
/// The lock is not recursive.
#pragma once

#include <atomic>
#include <mutex>

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

  void WaitForReaders() const noexcept;

  std::mutex writers;
  std::atomic<bool> writing{false};
};

class DATABINDING_THREAD_ANNOTATION(scoped_lockable) RegistryReadLock {
 public:
  [[nodiscard]] RegistryReadLock(RegistryLock& taken, ReaderRecord* ofThread)
      DATABINDING_THREAD_ANNOTATION(acquire_shared_capability(taken))
      : lock(taken), record(ofThread) {
    if (record != nullptr) {
      record->reading.store(&lock, std::memory_order_seq_cst);
      if (!lock.writing.load(std::memory_order_seq_cst)) return;
      record->reading.store(nullptr, std::memory_order_release);
      record = nullptr;
    }
    lock.writers.lock();
  }
  RegistryReadLock(const RegistryReadLock&) = delete;
  RegistryReadLock& operator=(const RegistryReadLock&) = delete;
  ~RegistryReadLock() DATABINDING_THREAD_ANNOTATION(release_capability()) {
    if (record != nullptr) {
      record->reading.store(nullptr, std::memory_order_release);
    } else {
      lock.writers.unlock();
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
    lock.writers.lock();
    lock.writing.store(true, std::memory_order_seq_cst);
    lock.WaitForReaders();
  }
  RegistryWriteLock(const RegistryWriteLock&) = delete;
  RegistryWriteLock& operator=(const RegistryWriteLock&) = delete;
  ~RegistryWriteLock() DATABINDING_THREAD_ANNOTATION(release_capability()) {
    lock.writing.store(false, std::memory_order_release);
    lock.writers.unlock();
  }

 private:
  RegistryLock& lock;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A ThreadLock is a reader/writer lock, which is taken by its two scope guards.
///
/// Many readers or one writer hold it at a time. It is not recursive: a thread that holds it, for
/// reading or for writing, must not take it again. On Windows it is the system's slim reader/writer
/// lock, because MinGW's std::shared_mutex is slower; elsewhere it is std::shared_mutex.
#pragma once

#include "DataBinding/Export.h"

#if !defined(_WIN32)
#include <shared_mutex>
#endif

namespace VtrUtils {

class DATABINDING_THREAD_ANNOTATION(capability("mutex")) ThreadLock {
 public:
  ThreadLock() noexcept = default;
  ThreadLock(const ThreadLock&) = delete;
  ThreadLock& operator=(const ThreadLock&) = delete;
  ~ThreadLock() = default;

 private:
  friend class ReadLock;
  friend class WriteLock;

#if defined(_WIN32)
  DATABINDING_API void LockShared() noexcept
      DATABINDING_THREAD_ANNOTATION(acquire_shared_capability());
  DATABINDING_API void UnlockShared() noexcept
      DATABINDING_THREAD_ANNOTATION(release_shared_capability());
  DATABINDING_API void Lock() noexcept DATABINDING_THREAD_ANNOTATION(acquire_capability());
  DATABINDING_API void Unlock() noexcept DATABINDING_THREAD_ANNOTATION(release_capability());

  void* slimLock = nullptr;
#else
  void LockShared() DATABINDING_THREAD_ANNOTATION(acquire_shared_capability())
      DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
    lock.lock_shared();
  }
  void UnlockShared() noexcept DATABINDING_THREAD_ANNOTATION(release_shared_capability())
      DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
    lock.unlock_shared();
  }
  void Lock() DATABINDING_THREAD_ANNOTATION(acquire_capability())
      DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
    lock.lock();
  }
  void Unlock() noexcept DATABINDING_THREAD_ANNOTATION(release_capability())
      DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
    lock.unlock();
  }

  std::shared_mutex lock;
#endif
};

/// Holds the lock for reading until the end of its scope.
class DATABINDING_THREAD_ANNOTATION(scoped_lockable) ReadLock {
 public:
  /// Waits while another thread writes. The lock must outlive the guard.
  [[nodiscard]] explicit ReadLock(ThreadLock& lock)
      DATABINDING_THREAD_ANNOTATION(acquire_shared_capability(lock))
      : held(lock) {
    held.LockShared();
  }
  ReadLock(const ReadLock&) = delete;
  ReadLock& operator=(const ReadLock&) = delete;
  ~ReadLock() DATABINDING_THREAD_ANNOTATION(release_capability()) { held.UnlockShared(); }

 private:
  ThreadLock& held;
};

/// Holds the lock for writing until the end of its scope.
class DATABINDING_THREAD_ANNOTATION(scoped_lockable) WriteLock {
 public:
  /// Waits until no other thread reads or writes. The lock must outlive the guard.
  [[nodiscard]] explicit WriteLock(ThreadLock& lock)
      DATABINDING_THREAD_ANNOTATION(acquire_capability(lock))
      : held(lock) {
    held.Lock();
  }
  WriteLock(const WriteLock&) = delete;
  WriteLock& operator=(const WriteLock&) = delete;
  ~WriteLock() DATABINDING_THREAD_ANNOTATION(release_capability()) { held.Unlock(); }

 private:
  ThreadLock& held;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::ReadLock;
using VtrUtils::ThreadLock;
using VtrUtils::WriteLock;
}  // namespace DataBinding

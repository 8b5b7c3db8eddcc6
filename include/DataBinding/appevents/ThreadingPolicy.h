// SPDX-License-Identifier: Apache-2.0
/// The lock of an event broadcaster's queue.
///
/// It is a recursive critical section. A thread that finds it taken spins for a while before it
/// sleeps, because the broadcaster holds the lock for a few instructions only, and never while a
/// callback runs. The broadcaster holds the policy by value; it is neither copied nor moved.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/foundation/CriticalSection.h"

namespace DataBinding::AEB {

struct DATABINDING_API DATABINDING_THREAD_ANNOTATION(capability("mutex")) ThreadingPolicy {
 public:
  ThreadingPolicy();
  ThreadingPolicy(const ThreadingPolicy&) = delete;
  ThreadingPolicy& operator=(const ThreadingPolicy&) = delete;
  ~ThreadingPolicy() = default;

  /// Takes the lock. Any thread; a thread that holds it may enter again, and leaves as often.
  void EnterCriticalSection() DATABINDING_THREAD_ANNOTATION(acquire_capability());
  /// Undoes one entry of this thread.
  void LeaveCriticalSection() DATABINDING_THREAD_ANNOTATION(release_capability());

 private:
  CriticalSection section;
};

}  // namespace DataBinding::AEB

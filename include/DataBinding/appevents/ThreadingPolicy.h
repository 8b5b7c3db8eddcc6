// SPDX-License-Identifier: Apache-2.0
/// The lock of an event broadcaster's queue.
///
/// A critical section: recursive, tried first, then spun upon, then waited for. The broadcaster
/// holds it for a few instructions at a time and never while a callback runs.
///
/// Held by value in its broadcaster; neither copied nor moved.
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

  /// Any thread; the one that holds it may enter again and then leaves as often.
  void EnterCriticalSection() DATABINDING_THREAD_ANNOTATION(acquire_capability());
  /// Undoes one entry of this thread.
  void LeaveCriticalSection() DATABINDING_THREAD_ANNOTATION(release_capability());

 private:
  CriticalSection section;
};

}  // namespace DataBinding::AEB

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/ThreadingPolicy.h"

namespace DataBinding::AEB {

ThreadingPolicy::ThreadingPolicy() = default;

void ThreadingPolicy::EnterCriticalSection()
    DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  section.Enter();
}

void ThreadingPolicy::LeaveCriticalSection()
    DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  section.Leave();
}

}  // namespace DataBinding::AEB

// SPDX-License-Identifier: Apache-2.0
// This file holds the critical section for systems that have none: an atomic state, which is tried,
// watched for a while, and then waited for. With std::recursive_mutex in its place, an event takes
// a quarter more time to be raised and delivered.

#include "DataBinding/foundation/CriticalSection.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace VtrUtils {

namespace {

/// Tells the processor that this thread is waiting for another one.
void Relax() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  _mm_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

}  // namespace

CriticalSection::CriticalSection() = default;

bool CriticalSection::TryEnter() DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  const auto self = std::this_thread::get_id();
  if (holder.load(std::memory_order_relaxed) == self) {
    ++depth;
    return true;
  }
  auto expected = State::Free;
  if (!state.compare_exchange_strong(expected, State::Held, std::memory_order_acquire,
                                     std::memory_order_relaxed)) {
    return false;
  }
  holder.store(self, std::memory_order_relaxed);
  return true;
}

void CriticalSection::Enter() DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  if (TryEnter()) return;
  for (unsigned spins = 0; spins < spinCount; ++spins) {
    Relax();
    if (state.load(std::memory_order_relaxed) == State::Free && TryEnter()) return;
  }
  // A waiting thread marks the section as awaited, so that the thread which leaves wakes another.
  while (state.exchange(State::Awaited, std::memory_order_acquire) != State::Free) {
    state.wait(State::Awaited, std::memory_order_relaxed);
  }
  holder.store(std::this_thread::get_id(), std::memory_order_relaxed);
}

void CriticalSection::Leave() DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  if (depth > 0) {
    --depth;
    return;
  }
  holder.store(std::thread::id(), std::memory_order_relaxed);
  if (state.exchange(State::Free, std::memory_order_release) == State::Awaited) state.notify_one();
}

}  // namespace VtrUtils

#include "DataBinding/foundation/CriticalSection.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace VtrUtils {

namespace {

/// Tells the processor that this thread waits for another one.
void Relax() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  _mm_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

}  // namespace

CriticalSection::CriticalSection() = default;
CriticalSection::~CriticalSection() = default;

bool CriticalSection::TryEnter() DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  return mutex.try_lock();
}

void CriticalSection::Enter() DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  for (unsigned attempts = 0; attempts <= spinCount; ++attempts) {
    if (mutex.try_lock()) return;
    Relax();
  }
  mutex.lock();
}

void CriticalSection::Leave() DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
  mutex.unlock();
}

}  // namespace VtrUtils

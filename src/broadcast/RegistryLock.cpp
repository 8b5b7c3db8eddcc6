// SPDX-License-Identifier: Apache-2.0
#include "RegistryLock.h"

#include <thread>

#include "DataBinding/foundation/details/Registration.h"

namespace DataBinding::details {

#if defined(_WIN32)

/// Takes the lock when it has become free. Where there is no futex, std::atomic::wait of libstdc++
/// looks at the word before it takes its own mutex, and may sleep through the notification.
void RegistryLock::Await(std::uint32_t bits) noexcept {
  WaitWhile([&] {
    std::uint32_t isFree = 0;
    return !word.compare_exchange_weak(isFree, bits, std::memory_order_seq_cst);
  });
}

#else

/// Takes the lock when it has become free. A waiting thread cannot know whether others wait as
/// well, so it takes the lock as one that is awaited.
void RegistryLock::Await(std::uint32_t bits) noexcept {
  auto seen = word.load(std::memory_order_relaxed);
  for (;;) {
    if (seen == 0) {
      if (word.compare_exchange_weak(seen, bits | AwaitedBit, std::memory_order_seq_cst)) return;
    } else if ((seen & AwaitedBit) != 0 ||
               word.compare_exchange_weak(seen, seen | AwaitedBit, std::memory_order_relaxed)) {
      word.wait(seen | AwaitedBit, std::memory_order_relaxed);
      seen = word.load(std::memory_order_relaxed);
    }
  }
}

#endif

void RegistryLock::WaitForReaders() const noexcept {
  for (auto* record = ReaderRecord::First(); record != nullptr; record = record->Next()) {
    while (record->reading.load(std::memory_order_seq_cst) == this) std::this_thread::yield();
  }
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "RegistryLock.h"

#include <thread>

namespace DataBinding::details {

void RegistryLock::WaitForReaders() const noexcept {
  for (auto* record = ReaderRecord::First(); record != nullptr; record = record->Next()) {
    while (record->reading.load(std::memory_order_seq_cst) == this) std::this_thread::yield();
  }
}

}  // namespace DataBinding::details

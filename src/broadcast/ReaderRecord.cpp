// SPDX-License-Identifier: Apache-2.0
#include "ReaderRecord.h"

#include <new>

namespace DataBinding::details {

namespace {

constinit std::atomic<ReaderRecord*> firstRecord{nullptr};

/// Most processes never allocate a record, because they do not need more than these.
constinit std::array<ReaderRecord, 16> pool;
constinit std::atomic<std::size_t> pooledRecords{0};

}  // namespace

constinit thread_local ReaderRecord* ReaderRecord::ofThread = nullptr;

/// Takes part in the order by which a writer sees the record of every reader that has not seen the
/// writer.
ReaderRecord* ReaderRecord::First() noexcept { return firstRecord.load(std::memory_order_seq_cst); }

ReaderRecord* ReaderRecord::Acquire() noexcept {
  for (ReaderRecord* record = First(); record != nullptr; record = record->next) {
    bool taken = false;
    if (record->taken.compare_exchange_strong(taken, true, std::memory_order_acq_rel)) {
      return record;
    }
  }
  const auto number = pooledRecords.fetch_add(1, std::memory_order_relaxed);
  ReaderRecord* made = number < pool.size() ? &pool[number] : new (std::nothrow) ReaderRecord;
  if (made == nullptr) return nullptr;
  made->next = firstRecord.load(std::memory_order_relaxed);
  while (!firstRecord.compare_exchange_weak(made->next, made, std::memory_order_seq_cst)) {
  }
  return made;
}

}  // namespace DataBinding::details

#include "ReaderRecord.h"

#include <new>

namespace DataBinding::details {

namespace {

constinit std::atomic<ReaderRecord*> firstRecord{nullptr};

/// The first records, so that most processes never allocate one.
constinit std::array<ReaderRecord, 16> pool;
constinit std::atomic<std::size_t> pooledRecords{0};

constinit thread_local bool threadIsEnding = false;

}  // namespace

constinit thread_local ReaderRecord* ReaderRecord::ofThread = nullptr;

/// Gives the record back when its thread ends.
class ReaderRecordOwner {
 public:
  ReaderRecordOwner() noexcept : record(ReaderRecord::Acquire()) {
    ReaderRecord::ofThread = record;
  }
  ReaderRecordOwner(const ReaderRecordOwner&) = delete;
  ReaderRecordOwner& operator=(const ReaderRecordOwner&) = delete;
  ~ReaderRecordOwner() {
    threadIsEnding = true;
    ReaderRecord::ofThread = nullptr;
    if (record != nullptr) record->taken.store(false, std::memory_order_release);
  }

 private:
  ReaderRecord* record;
};

ReaderRecord* ReaderRecord::MakeCurrent() noexcept {
  if (threadIsEnding) return nullptr;
  static thread_local ReaderRecordOwner owner;
  return ofThread;
}

ReaderRecord* ReaderRecord::First() noexcept { return firstRecord.load(std::memory_order_acquire); }

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

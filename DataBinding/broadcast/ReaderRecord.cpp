#include "ReaderRecord.h"

#include <new>

namespace DataBinding::details {

namespace {

constinit std::atomic<ReaderRecord*> firstRecord{nullptr};

constinit thread_local ReaderRecord* currentRecord = nullptr;
constinit thread_local bool threadIsEnding = false;

}  // namespace

/// Gives the record back when its thread ends.
class ReaderRecordOwner {
 public:
  ReaderRecordOwner() noexcept : record(ReaderRecord::Acquire()) { currentRecord = record; }
  ReaderRecordOwner(const ReaderRecordOwner&) = delete;
  ReaderRecordOwner& operator=(const ReaderRecordOwner&) = delete;
  ~ReaderRecordOwner() {
    threadIsEnding = true;
    currentRecord = nullptr;
    if (record != nullptr) record->taken.store(false, std::memory_order_release);
  }

 private:
  ReaderRecord* record;
};

ReaderRecord* ReaderRecord::Current() noexcept {
  if (currentRecord != nullptr || threadIsEnding) return currentRecord;
  static thread_local ReaderRecordOwner owner;
  return currentRecord;
}

ReaderRecord* ReaderRecord::First() noexcept { return firstRecord.load(std::memory_order_acquire); }

ReaderRecord* ReaderRecord::Acquire() noexcept {
  for (ReaderRecord* record = First(); record != nullptr; record = record->next) {
    bool taken = false;
    if (record->taken.compare_exchange_strong(taken, true, std::memory_order_acq_rel)) {
      return record;
    }
  }
  auto* made = new (std::nothrow) ReaderRecord;
  if (made == nullptr) return nullptr;
  made->next = firstRecord.load(std::memory_order_relaxed);
  while (!firstRecord.compare_exchange_weak(made->next, made, std::memory_order_acq_rel)) {
  }
  return made;
}

}  // namespace DataBinding::details

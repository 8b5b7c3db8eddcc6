#include "ReaderRecord.h"

namespace DataBinding::details {

namespace {
constinit thread_local bool threadIsEnding = false;
}  // namespace

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
    if (record != nullptr) record->GiveBack();
  }

 private:
  ReaderRecord* record;
};

ReaderRecord* ReaderRecord::MakeCurrent() noexcept {
  if (threadIsEnding) return nullptr;
  static thread_local ReaderRecordOwner owner;
  return ofThread;
}

}  // namespace DataBinding::details

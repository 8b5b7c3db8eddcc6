// SPDX-License-Identifier: Apache-2.0
#include "ReaderRecord.h"

#if defined(__linux__)
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace DataBinding::details {

namespace {
constinit thread_local bool readerIsEnding = false;
}  // namespace

/// Gives the record back when its thread ends. A thread that calls exit() in a callback keeps its
/// record: it runs the static destructors while it is still inside of its announcement.
class ReaderRecordOwner {
 public:
  ReaderRecordOwner() noexcept : record(ReaderRecord::Acquire()) {
    ReaderRecord::ofThread = record;
  }
  ReaderRecordOwner(const ReaderRecordOwner&) = delete;
  ReaderRecordOwner& operator=(const ReaderRecordOwner&) = delete;
  ~ReaderRecordOwner() {
    readerIsEnding = true;
    if (record == nullptr || record->IsPinning()) return;
    ReaderRecord::ofThread = nullptr;
    record->GiveBack();
  }

 private:
  ReaderRecord* record;
};

ReaderRecord* ReaderRecord::MakeCurrent() noexcept {
  if (readerIsEnding) return nullptr;
  static thread_local ReaderRecordOwner owner;
  return ofThread;
}

bool ReaderRecord::FenceOthers() noexcept {
#if defined(__linux__)
  const auto command = [](int number) { return syscall(SYS_membarrier, number, 0, 0) == 0; };
  return command(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) &&
         command(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
#else
  return false;
#endif
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
// Fiber-local storage calls a function with the record when the thread ends. A thread_local owner
// would not do: MinGW frees thread-local memory before destructors run, and keeps the library
// loaded for as long as a thread has such an object.

#include <windows.h>

#include "ReaderRecord.h"

namespace DataBinding::details {

class ReaderRecordOwner {
 public:
  ReaderRecordOwner() noexcept : slot(FlsAlloc(&GiveBack)) {}
  ReaderRecordOwner(const ReaderRecordOwner&) = delete;
  ReaderRecordOwner& operator=(const ReaderRecordOwner&) = delete;
  /// Runs when the library is unloaded, and gives all records back.
  ~ReaderRecordOwner() { FlsFree(slot); }

  /// Returns the record that the calling thread had before its thread-local memory was freed, or
  /// null.
  [[nodiscard]] ReaderRecord* Former() const noexcept {
    return static_cast<ReaderRecord*>(FlsGetValue(slot));
  }
  [[nodiscard]] ReaderRecord* Own(ReaderRecord* record) const noexcept {
    if (record == nullptr || FlsSetValue(slot, record) != 0) return record;
    record->GiveBack();
    return nullptr;
  }

 private:
  static void NTAPI GiveBack(void* record) { static_cast<ReaderRecord*>(record)->GiveBack(); }

  DWORD slot;
};

ReaderRecord* ReaderRecord::MakeCurrent() noexcept {
  static const ReaderRecordOwner owner;
  ReaderRecord* const former = owner.Former();
  ofThread = former != nullptr ? former : owner.Own(Acquire());
  return ofThread;
}

bool ReaderRecord::FenceOthers() noexcept {
  FlushProcessWriteBuffers();
  return true;
}

}  // namespace DataBinding::details

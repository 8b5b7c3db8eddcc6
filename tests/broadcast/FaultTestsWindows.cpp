// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include <vector>

#include <DataBinding/broadcast/ListenerGuard.h>
#include <gtest/gtest.h>

#include "Notifier.h"

namespace DataBinding {
namespace {

class FaultGuardOfWindows : public testing::Test {
 protected:
  FaultGuardOfWindows() {
    SetListenerFailureHandler(
        [this](const ListenerFailure& failure) { codes.push_back(failure.faultCode); });
  }
  ~FaultGuardOfWindows() override { SetListenerFailureHandler(nullptr); }

  Notifier notifier;
  std::vector<DWORD> codes;
};

TEST_F(FaultGuardOfWindows, FaultThatTheProgramMendsItselfIsNone) {
  static char* page;
  page = static_cast<char*>(VirtualAlloc(nullptr, 4096, MEM_RESERVE, PAGE_NOACCESS));
  void* const mending = AddVectoredExceptionHandler(1, [](EXCEPTION_POINTERS*) -> LONG {
    VirtualAlloc(page, 4096, MEM_COMMIT, PAGE_READWRITE);
    return EXCEPTION_CONTINUE_EXECUTION;
  });
  const auto listener = notifier.Listen([this] {
    *static_cast<volatile char*>(page) = 'm';
    notifier.log += *page;
  });

  EXPECT_EQ(notifier.Announce(), "m");
  EXPECT_TRUE(codes.empty());

  RemoveVectoredExceptionHandler(mending);
}

TEST_F(FaultGuardOfWindows, BreakpointIsLeftToTheDebugger) {
  const auto listener = notifier.Listen(&DebugBreak);
  EXPECT_DEATH(notifier.Announce(), "");
}

}  // namespace
}  // namespace DataBinding

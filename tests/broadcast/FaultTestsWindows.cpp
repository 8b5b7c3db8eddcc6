#include <windows.h>

#include <DataBinding/ListenerGuard.h>
#include <gtest/gtest.h>

#include "Faults.h"
#include "Notifier.h"

namespace DataBinding {
namespace {

TEST(FaultDeathOfProcess, FaultOutsideAListenerReachesTheApplicationsFilter) {
  Notifier notifier;
  EXPECT_EXIT(
      {
        SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { ExitProcess(42); });
        const auto listener = notifier.Log('1');
        notifier.UpdateListeners(L"A");
        AccessForbiddenMemory();
      },
      testing::ExitedWithCode(42), "");
}

}  // namespace
}  // namespace DataBinding

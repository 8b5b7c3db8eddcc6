// SPDX-License-Identifier: Apache-2.0
#include "EventPump.h"

namespace Sysmon {

void EventPump::Deliver() {
  // Listeners that go on raising events without end do not keep the loop from its keys.
  constexpr int mostPasses = 8;
  wakeUp.Clear();
  for (int pass = 0; pass < mostPasses; ++pass) {
    idle.Run();
    if (!idle.IsRequested()) return;
  }
}

}  // namespace Sysmon

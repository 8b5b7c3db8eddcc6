// SPDX-License-Identifier: Apache-2.0
#include "Pause.h"

namespace Sysmon {

void Pause::InitEventMap() {
  if (!IsEventMapInitialised()) On(interfacesMeasured, &Pause::TakeInterfaces);
  AppEventListener::InitEventMap();
}

void Pause::Toggle() {
  if (!IsOn()) return Begin();
  holds.clear();
}

void Pause::Begin() {
  holds.emplace_back(hostMeasured);
  holds.emplace_back(cpuMeasured);
  holds.emplace_back(memoryMeasured);
  holds.emplace_back(loadMeasured);
  holds.emplace_back(processesMeasured);
  holds.emplace_back(interfacesMeasured);
  for (const Interface& one : interfaces) holds.emplace_back(InterfaceMeasured(one.name));
}

}  // namespace Sysmon

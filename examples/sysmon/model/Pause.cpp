// SPDX-License-Identifier: Apache-2.0
#include "Pause.h"

namespace Sysmon {

void Pause::InitEventMap() {
  if (!IsEventMapInitialised()) On(interfacesMeasured, &Pause::TakeInterfaces);
  AppEventListener::InitEventMap();
}

void Pause::Toggle() {
  if (!IsOn()) return Begin();
  // The order matters: the event with the list of interfaces comes before that of each interface.
  while (IsOn()) holds.pop_front();
}

void Pause::Begin() {
  holds.emplace_back(hostMeasured);
  holds.emplace_back(cpuMeasured);
  holds.emplace_back(memoryMeasured);
  holds.emplace_back(loadMeasured);
  holds.emplace_back(processesMeasured);
  holds.emplace_back(interfacesMeasured);
  for (const std::string& name : interfaces) holds.emplace_back(InterfaceMeasured(name));
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "AlarmWatch.h"

#include <DataBinding/datasource/IDataSourceProvider.h>

namespace Sysmon {

AlarmWatch::Alarm::Alarm(DataBinding::IDataSourceProvider& root, const wchar_t* limitName)
    : name(limitName), limit(&root, L"Alarms", name) {
  // A bind waits for its source and never has it built.
  static_cast<void>(root.GetDataSource(L"Alarms"));
  followed = limit.SubscribeToValue([this](double now) { TakeLimit(now); });
  if (const auto now = limit.Get()) TakeLimit(*now);
}

void AlarmWatch::Alarm::TakeLimit(double value) { Tell(threshold.SetLimit(value)); }

void AlarmWatch::Alarm::Tell(Crossing crossing) const {
  if (crossing == Crossing::None) return;
  const auto& event = crossing == Crossing::Raised ? alarmRaised : alarmCleared;
  event.Raise(name, threshold.Value(), threshold.Limit());
}

AlarmWatch::AlarmWatch(DataBinding::IDataSourceProvider& root)
    : cpu(root, L"Cpu"), memory(root, L"Memory"), load(root, L"Load") {}

void AlarmWatch::InitEventMap() {
  if (!IsEventMapInitialised()) {
    On(cpuMeasured, &AlarmWatch::TakeCpu);
    On(memoryMeasured, &AlarmWatch::TakeMemory);
    On(loadMeasured, &AlarmWatch::TakeLoad);
  }
  AppEventListener::InitEventMap();
}

void AlarmWatch::TakeCpu(const CpuSample& sample) {
  cpu.Measure((sample.user.value + sample.kernel.value) * 100);
}

void AlarmWatch::TakeMemory(const MemorySample& sample) {
  if (sample.total == 0) return;
  const double part = static_cast<double>(sample.available) / static_cast<double>(sample.total);
  memory.Measure((1 - part) * 100);
}

}  // namespace Sysmon

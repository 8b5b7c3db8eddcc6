// SPDX-License-Identifier: Apache-2.0
/// The events of this program. Each is declared once, for the code that raises it and the code that
/// listens to it.
///
/// The sampling thread raises measurements, of which only the latest counts, and events of things
/// that have happened, of which each counts. The names of measurements begin with "Measured.".
#pragma once

#include <vector>

#include <DataBinding/appevents/AppEvent.h>

#include "../common/Things.h"
#include "Samples.h"

namespace Sysmon {

using DataBinding::AppEvent;

inline constinit const AppEvent<HostSample> hostMeasured{L"Measured.Host"};
inline constinit const AppEvent<CpuSample> cpuMeasured{L"Measured.Cpu"};
inline constinit const AppEvent<MemorySample> memoryMeasured{L"Measured.Memory"};
inline constinit const AppEvent<LoadSample> loadMeasured{L"Measured.Load"};
inline constinit const AppEvent<std::vector<Process>> processesMeasured{L"Measured.Processes"};
/// All interfaces. Each has an event of its own besides, for the log.
inline constinit const AppEvent<std::vector<Interface>> interfacesMeasured{L"Measured.Interfaces"};

[[nodiscard]] inline AppEvent<Interface> InterfaceMeasured(const VtrString& interface) {
  return AppEvent<Interface>(L"Measured.Interfaces." + interface);
}

/// Follows the measurements of one moment. The number counts the moments from 1.
inline constinit const AppEvent<Count> sampleTaken{L"SampleTaken"};
/// Sampling has failed, and no more samples will come. The text says why.
inline constinit const AppEvent<VtrString> samplingFailed{L"SamplingFailed"};

/// The process's name and number. A process that was there at the first sample has not started.
inline constinit const AppEvent<VtrString, Count> processStarted{L"ProcessStarted"};
inline constinit const AppEvent<VtrString, Count> processEnded{L"ProcessEnded"};

/// The name of a limit that was crossed, the value that crossed it, and the limit.
inline constinit const AppEvent<VtrString, double, double> alarmRaised{L"AlarmRaised"};
inline constinit const AppEvent<VtrString, double, double> alarmCleared{L"AlarmCleared"};

}  // namespace Sysmon

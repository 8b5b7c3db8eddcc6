// SPDX-License-Identifier: Apache-2.0
/// What is known of the machine and its parts at one moment: readings, and what only two of them
/// together can tell.
///
/// Plain values, made by the sampling thread and carried to the model by events.
#pragma once

#include "../common/Quantities.h"
#include "../system/SystemReader.h"

namespace Sysmon {

struct HostSample {
  HostReading reading;
  Count processes = 0;
  Count interfaces = 0;
};

/// Parts of the time of all processors together, since the sample before this one, or since the
/// machine started.
struct CpuSample {
  Count cores = 0;
  Share user;
  Share kernel;
  Share waiting;
  Share stolen;
};

using MemorySample = MemoryReading;
using LoadSample = LoadReading;

struct ProcessSample {
  ProcessReading reading;
  /// Of one processor's time, since the sample before this one, or since the process started.
  Share cpu;
  Seconds age{};
};

/// Speeds are those since the sample before this one; 0 in the first.
struct InterfaceSample {
  InterfaceReading reading;
  BytesPerSecond received;
  BytesPerSecond sent;
};

}  // namespace Sysmon

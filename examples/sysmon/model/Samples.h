// SPDX-License-Identifier: Apache-2.0
/// The state of the machine as a whole at one moment: readings, and figures such as shares that
/// only two readings together can tell.
///
/// Samples are plain values. The sampling thread makes them, and events carry them to the model.
#pragma once

#include "../common/Quantities.h"
#include "../system/SystemReader.h"

namespace Sysmon {

struct HostSample {
  HostReading reading;
  Count processes = 0;
  Count interfaces = 0;
};

/// Shares of the time of all processors together, since the sample before this one. The first
/// sample counts from the start of the machine.
struct CpuSample {
  Count cores = 0;
  Share user;
  Share kernel;
  Share waiting;
  Share stolen;
};

using MemorySample = MemoryReading;
using LoadSample = LoadReading;

}  // namespace Sysmon

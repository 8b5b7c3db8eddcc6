// SPDX-License-Identifier: Apache-2.0
/// The state of the machine and its parts at one moment: readings, and figures such as speeds that
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

struct ProcessSample {
  ProcessReading reading;
  /// The share of one processor's time since the sample before this one. The first sample counts
  /// from the start of the process.
  Share cpu;
  Seconds age{};
};

/// Speeds are averages since the sample before this one; they are 0 in the first sample.
struct InterfaceSample {
  InterfaceReading reading;
  BytesPerSecond received;
  BytesPerSecond sent;
};

}  // namespace Sysmon

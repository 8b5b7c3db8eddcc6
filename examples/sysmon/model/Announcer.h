// SPDX-License-Identifier: Apache-2.0
/// Turns readings of the system into events: measurements, and the things that have happened since
/// the reading before, which it remembers.
///
/// Only one thread at a time may use it, but any thread may, because events can be raised on any.
#pragma once

#include <chrono>
#include <map>
#include <string>
#include <utility>

#include "Events.h"

namespace Sysmon {

class Announcer {
 public:
  void Announce(const SystemReading& now);

 private:
  /// Tells a process from another one that bears the same number later.
  using ProcessKey = std::pair<Count, Seconds>;

  void AnnounceHost(const SystemReading& now) const;
  void AnnounceCpu(const CpuReading& cpu);
  void AnnounceProcesses(const SystemReading& now, Seconds elapsed);
  [[nodiscard]] Process Compare(const ProcessReading& now, Seconds uptime, Seconds elapsed) const;
  void AnnounceInterfaces(const SystemReading& now, Seconds elapsed);
  [[nodiscard]] Interface Compare(const InterfaceReading& now, Seconds elapsed) const;

  Count samples = 0;
  std::chrono::steady_clock::time_point taken;
  CpuReading cpuBefore;
  std::map<ProcessKey, ProcessReading> processes;
  std::map<std::string, InterfaceReading> interfaces;
};

}  // namespace Sysmon

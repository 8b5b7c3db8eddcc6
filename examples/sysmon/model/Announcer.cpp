// SPDX-License-Identifier: Apache-2.0
#include "Announcer.h"

#include <algorithm>
#include <vector>

namespace Sysmon {

namespace {

/// The growth of a counter per second. A counter that went back was reset, and the answer is 0
/// then.
double Rate(double before, double now, Seconds span) {
  return span > Seconds(0) ? std::max(0.0, now - before) / span.count() : 0;
}

BytesPerSecond Rate(Count before, Count now, Seconds span) {
  return {Rate(static_cast<double>(before), static_cast<double>(now), span)};
}

void RaiseOf(const AppEvent<VtrString, Count>& event, const ProcessReading& process) {
  event.Raise(VtrString::FromUtf8(process.name), process.id);
}

}  // namespace

void Announcer::Announce(const SystemReading& now) {
  const Seconds elapsed = samples == 0 ? Seconds(0) : now.taken - taken;
  taken = now.taken;
  ++samples;
  AnnounceHost(now);
  AnnounceCpu(now.cpu);
  memoryMeasured.RaiseLatest(now.memory);
  loadMeasured.RaiseLatest(now.load);
  AnnounceProcesses(now, elapsed);
  AnnounceInterfaces(now, elapsed);
  sampleTaken.RaiseLatest(samples);
}

void Announcer::AnnounceHost(const SystemReading& now) const {
  hostMeasured.RaiseLatest({now.host, now.processes.size(), now.interfaces.size()});
}

void Announcer::AnnounceCpu(const CpuReading& cpu) {
  const Seconds span = cpu.Total() - cpuBefore.Total();
  const auto share = [&](Seconds CpuReading::*kind) {
    return Share{std::min(1.0, Rate((cpuBefore.*kind).count(), (cpu.*kind).count(), span))};
  };
  cpuMeasured.RaiseLatest({cpu.cores, share(&CpuReading::user), share(&CpuReading::system),
                           share(&CpuReading::waiting), share(&CpuReading::stolen)});
  cpuBefore = cpu;
}

void Announcer::AnnounceProcesses(const SystemReading& now, Seconds elapsed) {
  std::vector<ProcessSample> samplesNow;
  std::map<ProcessKey, ProcessReading> present;
  for (const ProcessReading& process : now.processes) {
    const ProcessKey key{process.id, process.started};
    samplesNow.push_back(Compare(process, now.host.uptime, elapsed));
    if (samples > 1 && !processes.contains(key)) RaiseOf(processStarted, process);
    present.insert_or_assign(key, process);
  }
  for (const auto& [key, process] : processes) {
    if (!present.contains(key)) RaiseOf(processEnded, process);
  }
  processes = std::move(present);
  processesMeasured.RaiseLatest(std::move(samplesNow));
}

ProcessSample Announcer::Compare(const ProcessReading& process, Seconds uptime,
                                 Seconds elapsed) const {
  const Seconds age = uptime - process.started;
  const auto before = processes.find({process.id, process.started});
  const bool isKnown = before != processes.end();
  const double timeBefore = isKnown ? before->second.cpuTime.count() : 0;
  const double rate = Rate(timeBefore, process.cpuTime.count(), isKnown ? elapsed : age);
  return {process, {rate}, age};
}

void Announcer::AnnounceInterfaces(const SystemReading& now, Seconds elapsed) {
  std::vector<std::string> names;
  for (const InterfaceReading& reading : now.interfaces) names.push_back(reading.name);
  std::erase_if(interfaces, [&](const auto& known) {
    return std::ranges::find(names, known.first) == names.end();
  });
  interfacesMeasured.RaiseLatest(std::move(names));
  for (const InterfaceReading& reading : now.interfaces) {
    const auto [known, isNew] =
        interfaces.try_emplace(reading.name, Interface{InterfaceMeasured(reading.name), reading});
    Interface& interface = known->second;
    const auto& before = interface.before;
    interface.measured.RaiseLatest({reading,
                                    Rate(before.receivedBytes, reading.receivedBytes, elapsed),
                                    Rate(before.sentBytes, reading.sentBytes, elapsed)});
    interface.before = reading;
  }
}

}  // namespace Sysmon

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
  std::vector<Process> rows;
  rows.reserve(now.processes.size());
  std::map<ProcessKey, ProcessReading> present;
  for (const ProcessReading& process : now.processes) {
    const ProcessKey key{process.id, process.started};
    rows.push_back(Compare(process, now.host.uptime, elapsed));
    if (samples > 1 && !processes.contains(key)) RaiseOf(processStarted, process);
    present.insert_or_assign(key, process);
  }
  for (const auto& [key, process] : processes) {
    if (!present.contains(key)) RaiseOf(processEnded, process);
  }
  processes = std::move(present);
  processesMeasured.RaiseLatest(std::move(rows));
}

Process Announcer::Compare(const ProcessReading& now, Seconds uptime, Seconds elapsed) const {
  const Seconds age = uptime - now.started;
  const auto before = processes.find({now.id, now.started});
  const bool isKnown = before != processes.end();
  const double timeBefore = isKnown ? before->second.cpuTime.count() : 0;
  const double rate = Rate(timeBefore, now.cpuTime.count(), isKnown ? elapsed : age);
  return {.id = now.id,
          .parent = now.parent,
          .name = VtrString::FromUtf8(now.name),
          .user = VtrString::FromUtf8(now.user),
          .state = VtrString::FromUtf8(now.state),
          .cpu = {rate},
          .cpuTime = now.cpuTime,
          .age = age,
          .threads = now.threads,
          .resident = {now.residentBytes},
          .virtualSize = {now.virtualBytes},
          .started = now.started};
}

void Announcer::AnnounceInterfaces(const SystemReading& now, Seconds elapsed) {
  std::vector<Interface> rows;
  rows.reserve(now.interfaces.size());
  std::map<std::string, InterfaceReading> present;
  for (const InterfaceReading& reading : now.interfaces) {
    rows.push_back(Compare(reading, elapsed));
    present.insert_or_assign(reading.name, reading);
  }
  interfaces = std::move(present);
  interfacesMeasured.RaiseLatest(rows);
  for (const Interface& row : rows) InterfaceMeasured(row.name).RaiseLatest(row);
}

Interface Announcer::Compare(const InterfaceReading& now, Seconds elapsed) const {
  const auto known = interfaces.find(now.name);
  const InterfaceReading& before = known == interfaces.end() ? now : known->second;
  return {.name = VtrString::FromUtf8(now.name),
          .state = VtrString::FromUtf8(now.state),
          .address = VtrString::FromUtf8(now.address),
          .received = {now.receivedBytes},
          .sent = {now.sentBytes},
          .receivedRate = Rate(before.receivedBytes, now.receivedBytes, elapsed),
          .sentRate = Rate(before.sentBytes, now.sentBytes, elapsed),
          .receivedPackets = now.receivedPackets,
          .sentPackets = now.sentPackets,
          .errors = now.errors};
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "MachineSources.h"

namespace Sysmon {

HostSource::HostSource(const MachineRecord& shownRecord) : MachineSource(L"Host", shownRecord) {
  MakeEventSource(L"ProcessesChanged");
  MakeEventSource(L"InterfacesChanged");
}

void HostSource::TakeOver() {
  const HostReading& host = record.host.reading;
  Assign(name, VtrString::FromUtf8(host.name));
  Assign(system, VtrString::FromUtf8(host.system));
  Assign(architecture, VtrString::FromUtf8(host.architecture));
  Assign(uptime, host.uptime);
  Assign(processes, record.host.processes);
  Assign(interfaces, record.host.interfaces);
}

void CpuSource::TakeOver() {
  Assign(cores, record.cpu.cores);
  Assign(user, record.cpu.user);
  Assign(kernel, record.cpu.kernel);
  Assign(waiting, record.cpu.waiting);
  Assign(stolen, record.cpu.stolen);
}

void MemorySource::TakeOver() {
  const MemorySample& memory = record.memory;
  Assign(total, Bytes{memory.total});
  Assign(free, Bytes{memory.free});
  Assign(available, Bytes{memory.available});
  Assign(buffers, Bytes{memory.buffers});
  Assign(cached, Bytes{memory.cached});
  Assign(swapTotal, Bytes{memory.swapTotal});
  Assign(swapFree, Bytes{memory.swapFree});
}

Bytes MemorySource::Used() const {
  return {total->value > available->value ? total->value - available->value : 0};
}

Share MemorySource::Usage() const {
  if (total->value == 0) return {};
  return {static_cast<double>(Used().value) / static_cast<double>(total->value)};
}

void LoadSource::TakeOver() {
  const LoadSample& load = record.load;
  Assign(one, load.one);
  Assign(five, load.five);
  Assign(fifteen, load.fifteen);
  Assign(running, load.running);
  Assign(threads, load.threads);
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "MachineSources.h"

#include <algorithm>

namespace Sysmon {

void HostSource::Take(const HostSample& host) {
  Assign(name, VtrString::FromUtf8(host.reading.name));
  Assign(system, VtrString::FromUtf8(host.reading.system));
  Assign(architecture, VtrString::FromUtf8(host.reading.architecture));
  Assign(uptime, host.reading.uptime);
  Assign(processes, host.processes);
  Assign(interfaces, host.interfaces);
}

void CpuSource::Take(const CpuSample& cpu) {
  Assign(cores, cpu.cores);
  Assign(user, cpu.user);
  Assign(kernel, cpu.kernel);
  Assign(waiting, cpu.waiting);
  Assign(stolen, cpu.stolen);
}

void MemorySource::Take(const MemorySample& memory) {
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

void LoadSource::Take(const LoadSample& load) {
  Assign(one, load.one);
  Assign(five, load.five);
  Assign(fifteen, load.fifteen);
  Assign(running, load.running);
  Assign(threads, load.threads);
}

/// A number that another process has taken over is another row, so the former one goes first.
void MachineSource::TakeProcesses(const std::vector<Process>& now) {
  const auto isAnother = [this](const Process& process) {
    const Process* const known = processes.Find(process.id);
    return known != nullptr && known->started != process.started;
  };
  if (std::ranges::any_of(now, isAnother)) {
    auto same = now;
    std::erase_if(same, isAnother);
    Assign(processes, std::move(same));
  }
  Assign(processes, now);
}

}  // namespace Sysmon

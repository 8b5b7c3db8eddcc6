// SPDX-License-Identifier: Apache-2.0
#include "ThingSources.h"

namespace Sysmon {

void ProcessSource::TakeOver() {
  const ProcessReading& now = record.Now().reading;
  Assign(id, now.id);
  Assign(parent, now.parent);
  Assign(name, VtrString::FromUtf8(now.name));
  Assign(user, VtrString::FromUtf8(now.user));
  Assign(state, VtrString::FromUtf8(now.state));
  Assign(cpu, record.Now().cpu);
  Assign(cpuTime, now.cpuTime);
  Assign(age, record.Now().age);
  Assign(threads, now.threads);
  Assign(resident, Bytes{now.residentBytes});
  Assign(virtualSize, Bytes{now.virtualBytes});
}

void CommandSource::TakeOver() {
  const CommandReading now = record.ReadCommand();
  Assign(line, VtrString::FromUtf8(now.line));
  Assign(executable, VtrString::FromUtf8(now.executable));
  Assign(directory, VtrString::FromUtf8(now.directory));
  Assign(openFiles, now.openFiles);
}

void InterfaceSource::TakeOver() {
  const InterfaceReading& now = record.Now().reading;
  Assign(name, VtrString::FromUtf8(now.name));
  Assign(state, VtrString::FromUtf8(now.state));
  Assign(address, VtrString::FromUtf8(now.address));
  Assign(received, Bytes{now.receivedBytes});
  Assign(sent, Bytes{now.sentBytes});
  Assign(receivedRate, record.Now().received);
  Assign(sentRate, record.Now().sent);
  Assign(receivedPackets, now.receivedPackets);
  Assign(sentPackets, now.sentPackets);
  Assign(errors, now.errors);
}

}  // namespace Sysmon

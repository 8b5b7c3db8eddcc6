// SPDX-License-Identifier: Apache-2.0
/// The rows of the lists that the model publishes: the processes and the network interfaces of the
/// machine at one moment.
///
/// Rows are plain values. The sampling thread makes them, an event carries them to the model, and
/// views find them by the name of their list.
#pragma once

#include <DataBinding/lists/Fields.h>

#include "Quantities.h"

namespace Sysmon {

struct Process {
  Count id = 0;
  Count parent = 0;
  VtrString name;
  VtrString user;
  VtrString state;
  /// The share of one processor's time since the sample before this one. The first sample counts
  /// from the start of the process.
  Share cpu;
  Seconds cpuTime{};
  Seconds age{};
  Count threads = 0;
  Bytes resident;
  Bytes virtualSize;
  /// Counts from the machine's start. It is no field, and tells the process from a later one of the
  /// same number.
  Seconds started{};
};

constexpr auto FieldsOf(const Process* /*row*/) {
  using DataBinding::Field;
  return DataBinding::Fields(DataBinding::Key(L"Id", &Process::id),
                             Field(L"Parent", &Process::parent), Field(L"Name", &Process::name),
                             Field(L"User", &Process::user), Field(L"State", &Process::state),
                             Field(L"Cpu", &Process::cpu), Field(L"CpuTime", &Process::cpuTime),
                             Field(L"Age", &Process::age), Field(L"Threads", &Process::threads),
                             Field(L"Resident", &Process::resident),
                             Field(L"Virtual", &Process::virtualSize));
}

/// Speeds are averages since the sample before this one; they are 0 in the first sample.
struct Interface {
  VtrString name;
  VtrString state;
  VtrString address;
  Bytes received;
  Bytes sent;
  BytesPerSecond receivedRate;
  BytesPerSecond sentRate;
  Count receivedPackets = 0;
  Count sentPackets = 0;
  Count errors = 0;
};

constexpr auto FieldsOf(const Interface* /*row*/) {
  using DataBinding::Field;
  return DataBinding::Fields(
      DataBinding::Key(L"Name", &Interface::name), Field(L"State", &Interface::state),
      Field(L"Address", &Interface::address), Field(L"Received", &Interface::received),
      Field(L"Sent", &Interface::sent), Field(L"ReceivedRate", &Interface::receivedRate),
      Field(L"SentRate", &Interface::sentRate),
      Field(L"ReceivedPackets", &Interface::receivedPackets),
      Field(L"SentPackets", &Interface::sentPackets), Field(L"Errors", &Interface::errors));
}

}  // namespace Sysmon

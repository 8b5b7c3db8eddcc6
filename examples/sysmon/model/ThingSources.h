// SPDX-License-Identifier: Apache-2.0
/// The data sources of the child scopes, which show one process or one network interface. They find
/// their record as the data context of the scope in which they are built.
#pragma once

#include "Records.h"

namespace Sysmon {

using DataBinding::ReadOnlyProperty;

class ProcessSource final : public SampledSource {
 public:
  explicit ProcessSource(DataBinding::IDataSourceProvider* scope)
      : SampledSource(L"Process"), record(RecordOf<ProcessRecord>(*scope)) {}

  ReadOnlyProperty<Count> id{this, L"Id"};
  ReadOnlyProperty<Count> parent{this, L"Parent"};
  ReadOnlyProperty<VtrString> name{this, L"Name"};
  ReadOnlyProperty<VtrString> user{this, L"User"};
  ReadOnlyProperty<VtrString> state{this, L"State"};
  ReadOnlyProperty<Share> cpu{this, L"Cpu"};
  ReadOnlyProperty<Seconds> cpuTime{this, L"CpuTime"};
  ReadOnlyProperty<Seconds> age{this, L"Age"};
  ReadOnlyProperty<Count> threads{this, L"Threads"};
  ReadOnlyProperty<Bytes> resident{this, L"Resident"};
  ReadOnlyProperty<Bytes> virtualSize{this, L"Virtual"};

 private:
  void TakeOver() override;

  const ProcessRecord& record;
};

/// The command line of a process and the files that it holds open. Reading them costs several
/// files, so they are read only for processes whose "Command" source has been built.
class CommandSource final : public SampledSource {
 public:
  explicit CommandSource(DataBinding::IDataSourceProvider* scope)
      : SampledSource(L"Command"), record(RecordOf<ProcessRecord>(*scope)) {}

  ReadOnlyProperty<VtrString> line{this, L"CommandLine"};
  ReadOnlyProperty<VtrString> executable{this, L"Executable"};
  ReadOnlyProperty<VtrString> directory{this, L"Directory"};
  ReadOnlyProperty<Count> openFiles{this, L"OpenFiles"};

 private:
  void TakeOver() override;

  const ProcessRecord& record;
};

class InterfaceSource final : public SampledSource {
 public:
  explicit InterfaceSource(DataBinding::IDataSourceProvider* scope)
      : SampledSource(L"Interface"), record(RecordOf<InterfaceRecord>(*scope)) {}

  ReadOnlyProperty<VtrString> name{this, L"Name"};
  ReadOnlyProperty<VtrString> state{this, L"State"};
  ReadOnlyProperty<VtrString> address{this, L"Address"};
  ReadOnlyProperty<Bytes> received{this, L"Received"};
  ReadOnlyProperty<Bytes> sent{this, L"Sent"};
  ReadOnlyProperty<BytesPerSecond> receivedRate{this, L"ReceivedRate"};
  ReadOnlyProperty<BytesPerSecond> sentRate{this, L"SentRate"};
  ReadOnlyProperty<Count> receivedPackets{this, L"ReceivedPackets"};
  ReadOnlyProperty<Count> sentPackets{this, L"SentPackets"};
  ReadOnlyProperty<Count> errors{this, L"Errors"};

 private:
  void TakeOver() override;

  const InterfaceRecord& record;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// The data sources of the root scope, which show the machine as a whole.
#pragma once

#include "Records.h"

namespace Sysmon {

using DataBinding::ComputedProperty;
using DataBinding::ReadOnlyProperty;

/// A source that shows the machine's record.
class MachineSource : public SampledSource {
 protected:
  MachineSource(const wchar_t* sourceName, const MachineRecord& shownRecord)
      : SampledSource(sourceName), record(shownRecord) {}

  const MachineRecord& record;
};

/// Its event sources ProcessesChanged and InterfacesChanged are announced when processes or
/// interfaces have come or gone.
class HostSource final : public MachineSource {
 public:
  explicit HostSource(const MachineRecord& shownRecord);

  ReadOnlyProperty<VtrString> name{this, L"Name"};
  ReadOnlyProperty<VtrString> system{this, L"System"};
  ReadOnlyProperty<VtrString> architecture{this, L"Architecture"};
  ReadOnlyProperty<Seconds> uptime{this, L"Uptime"};
  ReadOnlyProperty<Count> processes{this, L"Processes"};
  ReadOnlyProperty<Count> interfaces{this, L"Interfaces"};

 private:
  void TakeOver() override;
};

/// Shares of the time of all processors together.
class CpuSource final : public MachineSource {
 public:
  explicit CpuSource(const MachineRecord& shownRecord) : MachineSource(L"Cpu", shownRecord) {}

  ReadOnlyProperty<Count> cores{this, L"Cores"};
  ReadOnlyProperty<Share> user{this, L"User"};
  ReadOnlyProperty<Share> kernel{this, L"System"};
  ReadOnlyProperty<Share> waiting{this, L"Waiting"};
  ReadOnlyProperty<Share> stolen{this, L"Stolen"};
  ComputedProperty<Share> usage{
      this, L"Usage", [this] { return Share{user->value + kernel->value}; }, user, kernel};

 private:
  void TakeOver() override;
};

class MemorySource final : public MachineSource {
 public:
  explicit MemorySource(const MachineRecord& shownRecord) : MachineSource(L"Memory", shownRecord) {}

  ReadOnlyProperty<Bytes> total{this, L"Total"};
  ReadOnlyProperty<Bytes> free{this, L"Free"};
  ReadOnlyProperty<Bytes> available{this, L"Available"};
  ReadOnlyProperty<Bytes> buffers{this, L"Buffers"};
  ReadOnlyProperty<Bytes> cached{this, L"Cached"};
  ReadOnlyProperty<Bytes> swapTotal{this, L"SwapTotal"};
  ReadOnlyProperty<Bytes> swapFree{this, L"SwapFree"};
  ComputedProperty<Bytes> used{this, L"Used", [this] { return Used(); }, total, available};
  ComputedProperty<Share> usage{this, L"Usage", [this] { return Usage(); }, total, available};

 private:
  void TakeOver() override;
  [[nodiscard]] Bytes Used() const;
  [[nodiscard]] Share Usage() const;
};

class LoadSource final : public MachineSource {
 public:
  explicit LoadSource(const MachineRecord& shownRecord) : MachineSource(L"Load", shownRecord) {}

  ReadOnlyProperty<double> one{this, L"One"};
  ReadOnlyProperty<double> five{this, L"Five"};
  ReadOnlyProperty<double> fifteen{this, L"Fifteen"};
  ReadOnlyProperty<Count> running{this, L"Running"};
  ReadOnlyProperty<Count> threads{this, L"Threads"};

 private:
  void TakeOver() override;
};

}  // namespace Sysmon

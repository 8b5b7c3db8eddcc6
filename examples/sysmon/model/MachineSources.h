// SPDX-License-Identifier: Apache-2.0
/// The data sources of the root scope, which show the machine as a whole and list its processes and
/// network interfaces. Each follows the events that carry its figures.
#pragma once

#include <utility>
#include <vector>

#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/foundation/Subscription.h>
#include <DataBinding/lists/List.h>
#include <DataBinding/property/Property.h>
#include <DataBinding/property/PropertyBatch.h>

#include "Events.h"

namespace Sysmon {

using DataBinding::ComputedProperty;
using DataBinding::ReadOnlyList;
using DataBinding::ReadOnlyProperty;

/// A source whose properties are set to the figures of each sample that is delivered. Each property
/// that has changed is announced once.
template <class Sample>
class SampledSource : public DataBinding::NamedDataSource {
 protected:
  SampledSource(VtrString sourceName, const AppEvent<Sample>& measured)
      : NamedDataSource(std::move(sourceName)),
        followed(measured.Subscribe([this](const Sample& sample) {
          const DataBinding::PropertyBatch batch(*this);
          Take(sample);
        })) {}

 private:
  virtual void Take(const Sample& sample) = 0;

  DataBinding::Subscription followed;
};

class HostSource final : public SampledSource<HostSample> {
 public:
  HostSource() : SampledSource(L"Host", hostMeasured) {}

  ReadOnlyProperty<VtrString> name{this, L"Name"};
  ReadOnlyProperty<VtrString> system{this, L"System"};
  ReadOnlyProperty<VtrString> architecture{this, L"Architecture"};
  ReadOnlyProperty<Seconds> uptime{this, L"Uptime"};
  ReadOnlyProperty<Count> processes{this, L"Processes"};
  ReadOnlyProperty<Count> interfaces{this, L"Interfaces"};

 private:
  void Take(const HostSample& host) override;
};

/// Shares of the time of all processors together.
class CpuSource final : public SampledSource<CpuSample> {
 public:
  CpuSource() : SampledSource(L"Cpu", cpuMeasured) {}

  ReadOnlyProperty<Count> cores{this, L"Cores"};
  ReadOnlyProperty<Share> user{this, L"User"};
  ReadOnlyProperty<Share> kernel{this, L"System"};
  ReadOnlyProperty<Share> waiting{this, L"Waiting"};
  ReadOnlyProperty<Share> stolen{this, L"Stolen"};
  ComputedProperty<Share> usage{
      this, L"Usage", [this] { return Share{user->value + kernel->value}; }, user, kernel};

 private:
  void Take(const CpuSample& cpu) override;
};

class MemorySource final : public SampledSource<MemorySample> {
 public:
  MemorySource() : SampledSource(L"Memory", memoryMeasured) {}

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
  void Take(const MemorySample& memory) override;
  [[nodiscard]] Bytes Used() const;
  [[nodiscard]] Share Usage() const;
};

class LoadSource final : public SampledSource<LoadSample> {
 public:
  LoadSource() : SampledSource(L"Load", loadMeasured) {}

  ReadOnlyProperty<double> one{this, L"One"};
  ReadOnlyProperty<double> five{this, L"Five"};
  ReadOnlyProperty<double> fifteen{this, L"Fifteen"};
  ReadOnlyProperty<Count> running{this, L"Running"};
  ReadOnlyProperty<Count> threads{this, L"Threads"};

 private:
  void Take(const LoadSample& load) override;
};

class MachineSource final : public DataBinding::NamedDataSource {
 public:
  MachineSource() : NamedDataSource(L"Machine") {}

  ReadOnlyList<Process> processes{this, L"Processes"};
  ReadOnlyList<Interface> interfaces{this, L"Interfaces"};

 private:
  void TakeProcesses(const std::vector<Process>& now);

  DataBinding::Subscription ofProcesses =
      processesMeasured.Subscribe([this](const std::vector<Process>& now) { TakeProcesses(now); });
  DataBinding::Subscription ofInterfaces = interfacesMeasured.Subscribe(
      [this](const std::vector<Interface>& now) { Assign(interfaces, now); });
};

}  // namespace Sysmon

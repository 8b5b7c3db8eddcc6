// SPDX-License-Identifier: Apache-2.0
/// The model: it publishes the machine below a root scope, and follows the measurements.
///
///   root       "root"       Host, Cpu, Memory, Load
///   ├─ one     "process"    Process, Command
///   └─ one     "interface"  Interface
///
/// The model registers the constructors of the sources, and a scope builds a source when it is
/// first asked for it. Each measurement that is delivered updates a record, makes and ends the
/// scopes of things that have come and gone, and refreshes the sources that have been built. The
/// model outlives its views.
#pragma once

#include <DataBinding/appevents/AppEventListener.h>
#include <DataBinding/property/DataSourceConstructor.h>

#include "MachineSources.h"
#include "ScopeSet.h"
#include "ThingSources.h"

namespace Sysmon {

class Machine final : public DataBinding::AppEventListener {
 public:
  /// The reader is asked for those details that are read only for processes that somebody looks at.
  Machine(SystemReader& systemReader, DataBinding::IDataSourceProvider& rootScope);

  void InitEventMap() override;

 private:
  template <class Source>
  using Constructor = DataBinding::DataSourceConstructor<Source>;

  /// Builds sources of the root scope, which was made without a data context.
  template <class Source>
  [[nodiscard]] typename Constructor<Source>::Factory FromRecord();

  void TakeHost(const HostSample& sample) { Take(record.host, sample, L"Host"); }
  void TakeCpu(const CpuSample& sample) { Take(record.cpu, sample, L"Cpu"); }
  void TakeMemory(const MemorySample& sample) { Take(record.memory, sample, L"Memory"); }
  void TakeLoad(const LoadSample& sample) { Take(record.load, sample, L"Load"); }
  void TakeProcesses(const std::vector<ProcessSample>& samples);
  void TakeInterfaces(const std::vector<std::string>& names);
  template <class Sample>
  void Take(Sample& kept, const Sample& sample, const wchar_t* source);
  void AnnounceAtHost(const wchar_t* event);

  DataBinding::IDataSourceProvider& root;
  MachineRecord record;
  Constructor<HostSource> hostSources{L"Host", L"root", DataBinding::Placement::Back,
                                      FromRecord<HostSource>()};
  Constructor<CpuSource> cpuSources{L"Cpu", L"root", DataBinding::Placement::Back,
                                    FromRecord<CpuSource>()};
  Constructor<MemorySource> memorySources{L"Memory", L"root", DataBinding::Placement::Back,
                                          FromRecord<MemorySource>()};
  Constructor<LoadSource> loadSources{L"Load", L"root", DataBinding::Placement::Back,
                                      FromRecord<LoadSource>()};
  Constructor<ProcessSource> processSources{L"Process", L"process"};
  Constructor<CommandSource> commandSources{L"Command", L"process"};
  Constructor<InterfaceSource> interfaceSources{L"Interface", L"interface"};
  ScopeSet<ProcessRecord, ProcessSample> processes;
  ScopeSet<InterfaceRecord, std::string> interfaces;
};

}  // namespace Sysmon

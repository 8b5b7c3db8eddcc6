/// The model: publishes the machine below a root scope, and follows it.
///
///   root       "root"       Host, Cpu, Memory, Load
///   ├─ one     "process"    Process, Command
///   └─ one     "interface"  Interface
///
/// Sources are registered here and built when somebody first asks a scope for them. Sample reads
/// the system once: it moves the records on, makes and ends the scopes of what has come and gone,
/// and refreshes the sources that have been built. It outlives its views.
#pragma once

#include <memory>

#include <DataBinding/DataSourceConstructor.h>

#include "MachineSources.h"
#include "ScopeSet.h"
#include "ThingSources.h"

namespace Sysmon {

class Sampler {
 public:
  Sampler(std::unique_ptr<SystemReader> systemReader, DataBinding::IDataSourceProvider& rootScope);
  Sampler(const Sampler&) = delete;
  Sampler& operator=(const Sampler&) = delete;
  ~Sampler() = default;

  void Sample();

 private:
  template <class Source>
  using Constructor = DataBinding::DataSourceConstructor<Source>;

  /// Builds sources of the root scope, which was made without a data context.
  template <class Source>
  [[nodiscard]] typename Constructor<Source>::Factory FromRecord();

  DataBinding::IDataSourceProvider& root;
  std::unique_ptr<SystemReader> reader;
  SystemRecord record{*reader};
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
  ScopeSet<ProcessRecord> processes{root, L"process"};
  ScopeSet<InterfaceRecord> interfaces{root, L"interface"};
};

}  // namespace Sysmon

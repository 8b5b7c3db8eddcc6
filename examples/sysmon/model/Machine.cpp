// SPDX-License-Identifier: Apache-2.0
#include "Machine.h"

#include <DataBinding/datasource/IDataSource.h>
#include <DataBinding/datasource/MakeDataSource.h>

namespace Sysmon {

template <class Source>
typename Machine::Constructor<Source>::Factory Machine::FromRecord() {
  return [this](DataBinding::IDataSourceProvider* scope) {
    return DataBinding::MakeDataSource<Source>(scope, record);
  };
}

Machine::Machine(SystemReader& systemReader, DataBinding::IDataSourceProvider& rootScope)
    : root(rootScope),
      processes(rootScope, L"process", systemReader),
      interfaces(rootScope, L"interface", systemReader) {}

void Machine::InitEventMap() {
  if (!IsEventMapInitialised()) {
    On(hostMeasured, &Machine::TakeHost);
    On(cpuMeasured, &Machine::TakeCpu);
    On(memoryMeasured, &Machine::TakeMemory);
    On(loadMeasured, &Machine::TakeLoad);
    On(processesMeasured, &Machine::TakeProcesses);
    On(interfacesMeasured, &Machine::TakeInterfaces);
  }
  AppEventListener::InitEventMap();
}

template <class Sample>
void Machine::Take(Sample& kept, const Sample& sample, const wchar_t* source) {
  kept = sample;
  RefreshSource(root.GetLocalDataSourceInstance(source));
}

void Machine::TakeProcesses(const std::vector<ProcessSample>& samples) {
  if (processes.Follow(samples)) AnnounceAtHost(L"ProcessesChanged");
}

void Machine::TakeInterfaces(const std::vector<std::string>& names) {
  if (interfaces.Follow(names)) AnnounceAtHost(L"InterfacesChanged");
}

/// A source that is not there has no listeners, so nothing is announced then.
void Machine::AnnounceAtHost(const wchar_t* event) {
  DataBinding::IDataSource* const host = root.GetLocalDataSourceInstance(L"Host");
  if (host != nullptr) host->UpdateListeners(event);
}

}  // namespace Sysmon

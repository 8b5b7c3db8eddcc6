#include "Sampler.h"

#include <utility>

#include <DataBinding/IDataSource.h>
#include <DataBinding/MakeDataSource.h>

namespace Sysmon {

template <class Source>
typename Sampler::Constructor<Source>::Factory Sampler::FromRecord() {
  return [this](DataBinding::IDataSourceProvider* scope) {
    return DataBinding::MakeDataSource<Source>(scope, record);
  };
}

Sampler::Sampler(std::unique_ptr<SystemReader> systemReader,
                 DataBinding::IDataSourceProvider& rootScope)
    : root(rootScope), reader(std::move(systemReader)) {}

void Sampler::Sample() {
  record.Advance();
  const bool processesChanged = processes.Follow(record.Now().processes, record);
  const bool interfacesChanged = interfaces.Follow(record.Now().interfaces, record);
  RefreshSources(root);
  // Nobody has built the source when nobody listens to it.
  DataBinding::IDataSource* const host = root.GetLocalDataSourceInstance(L"Host");
  if (host != nullptr && processesChanged) host->UpdateListeners(L"ProcessesChanged");
  if (host != nullptr && interfacesChanged) host->UpdateListeners(L"InterfacesChanged");
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "Machine.h"

#include <DataBinding/datasource/MakeDataSource.h>

#include "MachineSources.h"

namespace Sysmon {

Machine::Machine(SystemReader& systemReader, DataBinding::IDataSourceProvider& root)
    : commands(L"Command", L"process", DataBinding::Placement::Back,
               [&systemReader](DataBinding::IDataSourceProvider* scope) {
                 return DataBinding::MakeDataSource<CommandSource>(scope, scope, systemReader);
               }) {
  DataBinding::Emplace<HostSource>(root);
  DataBinding::Emplace<CpuSource>(root);
  DataBinding::Emplace<MemorySource>(root);
  DataBinding::Emplace<LoadSource>(root);
  DataBinding::Emplace<MachineSource>(root);
}

}  // namespace Sysmon

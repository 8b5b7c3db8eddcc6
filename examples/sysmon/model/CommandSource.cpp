// SPDX-License-Identifier: Apache-2.0
#include "CommandSource.h"

#include <DataBinding/property/PropertyBatch.h>

namespace Sysmon {

CommandSource::CommandSource(DataBinding::IDataSourceProvider* scope, SystemReader& systemReader)
    : NamedDataSource(L"Command"), reader(systemReader), id(scope, L"Process", L"Id") {
  Read();
}

void CommandSource::Read() {
  const auto process = id.Get();
  const CommandReading now = process ? reader.ReadCommand(*process) : CommandReading();
  const DataBinding::PropertyBatch batch(*this);
  Assign(line, VtrString::FromUtf8(now.line));
  Assign(executable, VtrString::FromUtf8(now.executable));
  Assign(directory, VtrString::FromUtf8(now.directory));
  Assign(openFiles, now.openFiles);
}

}  // namespace Sysmon

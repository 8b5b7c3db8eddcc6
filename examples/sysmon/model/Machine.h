// SPDX-License-Identifier: Apache-2.0
/// The model: it publishes the machine in a root scope, as sources that follow the measurements.
///
///   Host, Cpu, Memory, Load   the figures of the whole machine
///   Machine                   the lists Processes and Interfaces
///
/// A scope of the category "process" below it that shows one process as its source "Process" builds
/// a source "Command" when it is asked for that. The model outlives its views.
#pragma once

#include <DataBinding/property/DataSourceConstructor.h>

#include "CommandSource.h"

namespace Sysmon {

class Machine {
 public:
  /// The reader is asked for those details that are read only for processes that somebody looks at.
  Machine(SystemReader& systemReader, DataBinding::IDataSourceProvider& root);

 private:
  DataBinding::DataSourceConstructor<CommandSource> commands;
};

}  // namespace Sysmon

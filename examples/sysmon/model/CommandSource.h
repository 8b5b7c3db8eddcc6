// SPDX-License-Identifier: Apache-2.0
/// The data source of the command line of a process and the number of files that it holds open.
///
/// Reading them costs several files, so they are read only for a process that somebody looks at:
/// the one whose number is the "Id" of the source "Process" in the scope of this source. They are
/// read when it becomes another one, and anew with each sample.
#pragma once

#include <vector>

#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/framework/DataBind.h>
#include <DataBinding/property/Property.h>

#include "Events.h"

namespace Sysmon {

class CommandSource final : public DataBinding::NamedDataSource {
 public:
  CommandSource(DataBinding::IDataSourceProvider* scope, SystemReader& systemReader);

  DataBinding::ReadOnlyProperty<VtrString> line{this, L"CommandLine"};
  DataBinding::ReadOnlyProperty<VtrString> executable{this, L"Executable"};
  DataBinding::ReadOnlyProperty<VtrString> directory{this, L"Directory"};
  DataBinding::ReadOnlyProperty<Count> openFiles{this, L"OpenFiles"};

 private:
  void Read();

  SystemReader& reader;
  DataBinding::Framework::DataBind<Count> id;
  DataBinding::Subscription ofId = id.SubscribeToChanges([this] { Read(); });
  DataBinding::Subscription ofSamples =
      processesMeasured.Subscribe([this](const std::vector<Process>& /*now*/) { Read(); });
};

}  // namespace Sysmon

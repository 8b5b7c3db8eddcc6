// SPDX-License-Identifier: Apache-2.0
/// The root scope with the whole model in it, and a log of the events: the parts of the program
/// that are the same wherever the figures are shown.
///
/// A Sampler has to run for figures to come, and the events that it raises have to be delivered.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include <DataBinding/registrar/IDataSourceRegistrar.h>

#include "../common/EventLog.h"
#include "../common/Limits.h"
#include "AlarmWatch.h"
#include "EventRecorder.h"
#include "Machine.h"

namespace Sysmon {

/// The root scope, for as long as this lives.
class RootScope {
 public:
  RootScope() { Registrar().Initialize(); }
  RootScope(const RootScope&) = delete;
  RootScope& operator=(const RootScope&) = delete;
  ~RootScope() { Registrar().Shutdown(); }

  [[nodiscard]] IDataSourceProvider& Get() const { return *Registrar().GetRootProvider(); }

 private:
  [[nodiscard]] static DataBinding::IDataSourceRegistrar& Registrar() {
    return DataBinding::IDataSourceRegistrar::GetInstance();
  }
};

class PublishedMachine {
 public:
  [[nodiscard]] IDataSourceProvider& Root() const { return root.Get(); }
  [[nodiscard]] SystemReader& Reader() const { return *reader; }
  [[nodiscard]] const EventLog& Log() const { return log; }

 private:
  static constexpr std::size_t mostEvents = 10'000;

  RootScope root;
  std::unique_ptr<SystemReader> reader = SystemReader::Create();
  EventLog log{mostEvents};
  EventRecorder recorder{log};
  Machine machine{*reader, root.Get()};
  AlarmWatch alarms{root.Get()};
};

}  // namespace Sysmon

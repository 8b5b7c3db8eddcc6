// SPDX-License-Identifier: Apache-2.0
/// Writes each event that is delivered into a log, with its arguments.
#pragma once

#include <vector>

#include <DataBinding/foundation/Any.h>

#include "../common/EventLog.h"

namespace Sysmon {

class EventRecorder {
 public:
  explicit EventRecorder(EventLog& eventLog);
  EventRecorder(const EventRecorder&) = delete;
  EventRecorder& operator=(const EventRecorder&) = delete;
  ~EventRecorder();

 private:
  void Record(const VtrString& name, const std::vector<DataBinding::Any>& arguments);

  EventLog& log;
  int hook;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// The data source of the alarms: limits that anybody may set, and whether each is reached.
///
/// The limits of processors and memory are percentages. A limit's alarm bears its name; it is shown
/// here when the event of it has been delivered.
#pragma once

#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/property/Property.h>

#include "Events.h"

namespace Sysmon {

class AlarmSource final : public DataBinding::NamedDataSource {
 public:
  AlarmSource() : NamedDataSource(L"Alarms") {}

  DataBinding::Property<double> cpu{this, L"Cpu", 90, {.validate = UpTo(100)}};
  DataBinding::Property<double> memory{this, L"Memory", 90, {.validate = UpTo(100)}};
  DataBinding::Property<double> load{this, L"Load", 50, {.validate = UpTo(100'000)}};
  DataBinding::ReadOnlyProperty<bool> cpuRaised{this, L"CpuRaised"};
  DataBinding::ReadOnlyProperty<bool> memoryRaised{this, L"MemoryRaised"};
  DataBinding::ReadOnlyProperty<bool> loadRaised{this, L"LoadRaised"};

 private:
  /// Refuses what is not above 0 and at most so much.
  static DataBinding::RepeatingCallback<VtrString(const double&)> UpTo(double most);
  void Mark(const VtrString& limit, bool isRaised);

  DataBinding::Subscription raised =
      alarmRaised.Subscribe([this](const VtrString& limit, double, double) { Mark(limit, true); });
  DataBinding::Subscription cleared = alarmCleared.Subscribe(
      [this](const VtrString& limit, double, double) { Mark(limit, false); });
};

}  // namespace Sysmon

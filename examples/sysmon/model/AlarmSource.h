// SPDX-License-Identifier: Apache-2.0
/// The data source of the alarms: limits that may be set, and for each limit whether it is reached.
///
/// The limits of processors and memory are percentages. The alarm of a limit has the limit's name.
/// Its property here changes when the event of the alarm has been delivered.
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
  /// Makes a validator that accepts values above 0 and up to `most`.
  static DataBinding::RepeatingCallback<VtrString(const double&)> UpTo(double most);
  void Mark(const VtrString& limit, bool isRaised);

  DataBinding::Subscription raised =
      alarmRaised.Subscribe([this](const VtrString& limit, double, double) { Mark(limit, true); });
  DataBinding::Subscription cleared = alarmCleared.Subscribe(
      [this](const VtrString& limit, double, double) { Mark(limit, false); });
};

}  // namespace Sysmon

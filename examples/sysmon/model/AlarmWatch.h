// SPDX-License-Identifier: Apache-2.0
/// Compares the measurements with the limits of the "Alarms" source, and raises an event when a
/// limit is crossed, whether a measurement or the limit has changed.
#pragma once

#include <DataBinding/appevents/AppEventListener.h>
#include <DataBinding/framework/DataBind.h>
#include <DataBinding/property/DataSourceConstructor.h>

#include "AlarmSource.h"
#include "Threshold.h"

namespace Sysmon {

class AlarmWatch final : public DataBinding::AppEventListener {
 public:
  /// Registers the source and has it built.
  explicit AlarmWatch(DataBinding::IDataSourceProvider& root);

  void InitEventMap() override;

 private:
  class Alarm {
   public:
    Alarm(DataBinding::IDataSourceProvider& root, const wchar_t* limitName);
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;
    ~Alarm() = default;

    void Measure(double value) { Tell(threshold.Measure(value)); }

   private:
    void TakeLimit(double value);
    void Tell(Crossing crossing) const;

    VtrString name;
    DataBinding::Framework::DataBind<double> limit;
    Threshold threshold;
    DataBinding::Subscription followed;
  };

  void TakeCpu(const CpuSample& sample);
  void TakeMemory(const MemorySample& sample);
  void TakeLoad(const LoadSample& sample) { load.Measure(sample.one); }

  DataBinding::DataSourceConstructor<AlarmSource> sources{L"Alarms", L"root"};
  Alarm cpu;
  Alarm memory;
  Alarm load;
};

}  // namespace Sysmon

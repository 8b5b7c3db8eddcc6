// SPDX-License-Identifier: Apache-2.0
/// The records of the scopes: the latest samples of the machine, of one process, or of one network
/// interface. A record is the data context of its scope, and the scope's data sources show it.
#pragma once

#include <string>
#include <utility>

#include <DataBinding/appevents/AppEventListener.h>
#include <DataBinding/datasource/IDataSourceProvider.h>

#include "Events.h"
#include "SampledSource.h"

namespace DataBinding {

/// The library only declares this type, and the application defines it.
class IDataContext {
 protected:
  IDataContext() = default;
  ~IDataContext() = default;
};

}  // namespace DataBinding

namespace Sysmon {

/// The record that a scope was made with.
template <class Record>
[[nodiscard]] const Record& RecordOf(DataBinding::IDataSourceProvider& scope) {
  return static_cast<const Record&>(*scope.GetDataContext());
}

struct MachineRecord {
  HostSample host;
  CpuSample cpu;
  MemorySample memory;
  LoadSample load;
};

class ProcessRecord final : public DataBinding::IDataContext {
 public:
  ProcessRecord(const ProcessSample& first, SystemReader& systemReader)
      : now(first), reader(systemReader) {}

  [[nodiscard]] static std::pair<Count, Seconds> Key(const ProcessSample& sample) {
    return {sample.reading.id, sample.reading.started};
  }
  void Follow(const ProcessSample& sample, const DataBinding::IDataSourceProvider& scope) {
    now = sample;
    RefreshSources(scope);
  }

  [[nodiscard]] const ProcessSample& Now() const { return now; }
  [[nodiscard]] CommandReading ReadCommand() const { return reader.ReadCommand(now.reading.id); }

 private:
  ProcessSample now;
  SystemReader& reader;
};

/// The record of an interface. It listens to the event of this interface.
class InterfaceRecord final : public DataBinding::IDataContext,
                              public DataBinding::AppEventListener {
 public:
  InterfaceRecord(std::string interfaceName, SystemReader& /*systemReader*/)
      : name(std::move(interfaceName)) {}

  [[nodiscard]] static const std::string& Key(const std::string& interface) { return interface; }
  void Follow(const std::string& /*interface*/, const DataBinding::IDataSourceProvider& ownScope) {
    scope = &ownScope;
  }
  void InitEventMap() override {
    if (!IsEventMapInitialised()) On(InterfaceMeasured(name), &InterfaceRecord::Take);
    AppEventListener::InitEventMap();
  }

  [[nodiscard]] const InterfaceSample& Now() const { return now; }

 private:
  void Take(const InterfaceSample& sample) {
    now = sample;
    if (scope != nullptr) RefreshSources(*scope);
  }

  std::string name;
  InterfaceSample now;
  const DataBinding::IDataSourceProvider* scope = nullptr;
};

}  // namespace Sysmon

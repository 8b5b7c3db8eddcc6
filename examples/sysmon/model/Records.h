/// What the scopes are about: the machine, one of its processes, one of its network interfaces.
///
/// A record holds the latest reading and what only two readings together can tell. The sampler
/// moves it on; the data sources of its scope show it. The record of a scope is its data context.
#pragma once

#include <string>

#include <DataBinding/IDataSourceProvider.h>

#include "../common/Quantities.h"
#include "../system/SystemReader.h"

namespace DataBinding {

/// The library only declares this type and leaves it to the application to say what it is.
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

class SystemRecord {
 public:
  explicit SystemRecord(SystemReader& systemReader) : reader(systemReader) {}

  void Advance();

  [[nodiscard]] const SystemReading& Now() const { return now; }
  /// The time between the last two readings; 0 after the first.
  [[nodiscard]] Seconds Elapsed() const { return elapsed; }
  /// The part of the processors' time that went into one kind of work since the last reading, or
  /// since the machine started.
  [[nodiscard]] Share CpuShare(Seconds CpuReading::*kind) const;
  [[nodiscard]] CommandReading ReadCommand(Count processId) const {
    return reader.ReadCommand(processId);
  }

 private:
  SystemReader& reader;
  SystemReading now;
  CpuReading cpuBefore;
  Seconds elapsed{};
};

class ProcessRecord final : public DataBinding::IDataContext {
 public:
  using Reading = ProcessReading;

  explicit ProcessRecord(const SystemRecord& ofSystem) : system(ofSystem) {}

  /// Tells a process from another one that bears the same number later.
  [[nodiscard]] static std::pair<Count, Seconds> Key(const ProcessReading& reading) {
    return {reading.id, reading.started};
  }
  void Advance(const ProcessReading& reading);

  [[nodiscard]] const ProcessReading& Now() const { return now; }
  /// Of one processor's time, since the last reading or since the process started.
  [[nodiscard]] Share CpuShare() const { return cpuShare; }
  [[nodiscard]] Seconds Age() const { return system.Now().host.uptime - now.started; }
  [[nodiscard]] CommandReading ReadCommand() const { return system.ReadCommand(now.id); }

 private:
  const SystemRecord& system;
  ProcessReading now;
  Share cpuShare;
  bool isKnown = false;
};

class InterfaceRecord final : public DataBinding::IDataContext {
 public:
  using Reading = InterfaceReading;

  explicit InterfaceRecord(const SystemRecord& ofSystem) : system(ofSystem) {}

  [[nodiscard]] static const std::string& Key(const InterfaceReading& reading) {
    return reading.name;
  }
  void Advance(const InterfaceReading& reading);

  [[nodiscard]] const InterfaceReading& Now() const { return now; }
  /// Since the last reading; 0 after the first.
  [[nodiscard]] BytesPerSecond ReceivedRate() const { return receivedRate; }
  [[nodiscard]] BytesPerSecond SentRate() const { return sentRate; }

 private:
  const SystemRecord& system;
  InterfaceReading now;
  BytesPerSecond receivedRate;
  BytesPerSecond sentRate;
  bool isKnown = false;
};

}  // namespace Sysmon

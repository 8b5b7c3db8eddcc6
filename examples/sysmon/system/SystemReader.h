// SPDX-License-Identifier: Apache-2.0
/// Reads the state of the machine as plain figures, the same ones on every operating system.
///
/// A reading is a snapshot. Counters and times only grow, and the difference of two readings tells
/// what happened between them. Texts are bytes as the system has them, since a process may have any
/// name.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Sysmon {

using Seconds = std::chrono::duration<double>;

struct HostReading {
  std::string name;
  std::string system;
  std::string architecture;
  Seconds uptime{};
};

/// Times are sums over all processors since the machine started.
struct CpuReading {
  std::uint64_t cores = 0;
  Seconds user{};
  Seconds system{};
  Seconds waiting{};
  Seconds idle{};
  Seconds stolen{};

  [[nodiscard]] Seconds Total() const { return user + system + waiting + idle + stolen; }
};

/// In bytes.
struct MemoryReading {
  std::uint64_t total = 0;
  std::uint64_t free = 0;
  std::uint64_t available = 0;
  std::uint64_t buffers = 0;
  std::uint64_t cached = 0;
  std::uint64_t swapTotal = 0;
  std::uint64_t swapFree = 0;
};

/// How many threads ran or waited for a processor, on average over the last 1, 5 and 15 minutes,
/// and now.
struct LoadReading {
  double one = 0;
  double five = 0;
  double fifteen = 0;
  std::uint64_t running = 0;
  std::uint64_t threads = 0;
};

struct ProcessReading {
  std::uint64_t id = 0;
  std::uint64_t parent = 0;
  std::string name;
  std::string user;
  std::string state;
  Seconds cpuTime{};
  Seconds started{};  ///< after the machine's start
  std::uint64_t threads = 0;
  std::uint64_t residentBytes = 0;
  std::uint64_t virtualBytes = 0;
};

/// Details of a process, which cost more to read and are read only for a process that is shown.
struct CommandReading {
  std::string line;
  std::string executable;
  std::string directory;
  std::uint64_t openFiles = 0;
};

struct InterfaceReading {
  std::string name;
  std::string state;
  std::string address;
  std::uint64_t receivedBytes = 0;
  std::uint64_t receivedPackets = 0;
  std::uint64_t sentBytes = 0;
  std::uint64_t sentPackets = 0;
  std::uint64_t errors = 0;
};

struct SystemReading {
  std::chrono::steady_clock::time_point taken;
  HostReading host;
  CpuReading cpu;
  MemoryReading memory;
  LoadReading load;
  std::vector<ProcessReading> processes;
  std::vector<InterfaceReading> interfaces;
};

class SystemReader {
 public:
  virtual ~SystemReader() = default;

  [[nodiscard]] virtual SystemReading Read() = 0;
  /// Parts that this user may not see are empty, and so is the answer for a process that has ended.
  /// Another thread may call Read meanwhile.
  [[nodiscard]] virtual CommandReading ReadCommand(std::uint64_t processId) = 0;

  /// The reader of the operating system that this program was built for.
  [[nodiscard]] static std::unique_ptr<SystemReader> Create();

 protected:
  SystemReader() = default;
  SystemReader(const SystemReader&) = default;
  SystemReader& operator=(const SystemReader&) = default;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// Reads /proc and /sys. Every file is optional: processes end and interfaces go while they are
/// being read, and a container may hide any of it.
#include <fcntl.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <utility>

#include "ProcText.h"
#include "SystemReader.h"

namespace Sysmon {

namespace {

namespace fs = std::filesystem;

/// The text of a file, as far as it can be read: a process may end between opening and reading.
std::string ReadFile(const fs::path& path) {
  std::string text;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return text;
  char part[4096];
  for (ssize_t size = 0; (size = read(file, part, sizeof part)) > 0;) {
    text.append(part, static_cast<std::size_t>(size));
  }
  close(file);
  return text;
}

std::string ReadFirstLine(const fs::path& path) {
  std::string text = ReadFile(path);
  text.resize(std::min(text.find('\n'), text.size()));
  return text;
}

/// Where a link points to; empty when it cannot be read.
std::string ReadLink(const fs::path& path) {
  std::error_code error;
  return fs::read_symlink(path, error).string();
}

/// Calls visit(path) for what is in a folder, until its end or an error.
template <class Visitor>
void VisitFolder(const fs::path& folder, Visitor&& visit) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    visit(entry->path());
  }
}

fs::path FolderOf(std::uint64_t processId) { return fs::path("/proc") / std::to_string(processId); }

class LinuxReader final : public SystemReader {
 public:
  SystemReading Read() override {
    SystemReading reading;
    reading.taken = std::chrono::steady_clock::now();
    reading.host = ReadHost();
    reading.cpu = ReadCpu();
    reading.memory = ParseMemory(ReadFile("/proc/meminfo"));
    reading.load = ParseLoad(ReadFile("/proc/loadavg"));
    reading.processes = ReadProcesses();
    reading.interfaces = ReadInterfaces();
    return reading;
  }

  CommandReading ReadCommand(std::uint64_t processId) override {
    const fs::path folder = FolderOf(processId);
    CommandReading command;
    command.line = ParseCommandLine(ReadFile(folder / "cmdline"));
    command.executable = ReadLink(folder / "exe");
    command.directory = ReadLink(folder / "cwd");
    VisitFolder(folder / "fd", [&](const fs::path&) { ++command.openFiles; });
    return command;
  }

 private:
  [[nodiscard]] Seconds FromTicks(std::uint64_t ticks) const {
    return Seconds(static_cast<double>(ticks) / ticksPerSecond);
  }

  [[nodiscard]] static HostReading ReadHost() {
    utsname names{};
    uname(&names);
    return {.name = names.nodename,
            .system = std::string(names.sysname) + ' ' + names.release,
            .architecture = names.machine,
            .uptime = ParseUptime(ReadFile("/proc/uptime"))};
  }

  [[nodiscard]] CpuReading ReadCpu() const {
    const CpuStat stat = ParseCpuStat(ReadFile("/proc/stat"));
    return {.cores = stat.cores,
            .user = FromTicks(stat.user + stat.nice),
            .system = FromTicks(stat.system + stat.interrupts + stat.softInterrupts),
            .waiting = FromTicks(stat.waiting),
            .idle = FromTicks(stat.idle),
            .stolen = FromTicks(stat.stolen)};
  }

  [[nodiscard]] std::vector<ProcessReading> ReadProcesses() {
    std::vector<ProcessReading> processes;
    VisitFolder("/proc", [&](const fs::path& folder) {
      if (!ParseCount(folder.filename().string())) return;
      const auto stat = ParseProcessStat(ReadFile(folder / "stat"));
      const std::string status = ReadFile(folder / "status");
      if (!stat || status.empty()) return;  // it has ended
      processes.push_back(MakeProcess(*stat, ParseProcessStatus(status)));
    });
    return processes;
  }

  [[nodiscard]] ProcessReading MakeProcess(const ProcessStat& stat, const ProcessStatus& status) {
    return {.id = stat.id,
            .parent = stat.parent,
            .name = stat.name,
            .user = UserName(static_cast<uid_t>(status.userId)),
            .state = std::string(StateName(stat.state)),
            .cpuTime = FromTicks(stat.userTicks + stat.systemTicks),
            .started = FromTicks(stat.startTicks),
            .threads = stat.threads,
            .residentBytes = status.residentBytes,
            .virtualBytes = stat.virtualBytes};
  }

  /// The user's name, or the number of a user without a name. Each user is looked up once.
  [[nodiscard]] const std::string& UserName(uid_t id) {
    const auto [known, isNew] = users.try_emplace(id);
    if (isNew) {
      const passwd* const entry = getpwuid(id);  // NOLINT(concurrency-mt-unsafe): one thread
      known->second = entry != nullptr ? entry->pw_name : std::to_string(id);
    }
    return known->second;
  }

  [[nodiscard]] static std::vector<InterfaceReading> ReadInterfaces() {
    auto interfaces = ParseInterfaces(ReadFile("/proc/net/dev"));
    for (auto& interface : interfaces) {
      const fs::path folder = fs::path("/sys/class/net") / interface.name;
      interface.state = ReadFirstLine(folder / "operstate");
      interface.address = ReadFirstLine(folder / "address");
    }
    return interfaces;
  }

  double ticksPerSecond = static_cast<double>(std::max(1L, sysconf(_SC_CLK_TCK)));
  std::map<uid_t, std::string> users;
};

}  // namespace

std::unique_ptr<SystemReader> SystemReader::Create() { return std::make_unique<LinuxReader>(); }

}  // namespace Sysmon

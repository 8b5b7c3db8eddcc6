// SPDX-License-Identifier: Apache-2.0
/// Reads the state of the machine from Windows. Figures that Windows does not tell stay empty or 0:
/// load averages, the states of processes, their command lines, times of waiting. A process that
/// this user may not open has a name and an id only.
// Each of these headers needs the one before it.
// clang-format off
#include <winsock2.h>
#include <ws2ipdef.h>
#include <iphlpapi.h>
// clang-format on
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include <DataBinding/foundation/String.h>

#include "SystemReader.h"

namespace Sysmon {

namespace {

std::string Utf8(std::wstring_view text) { return DataBinding::VtrString(text).ToUtf8(); }

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, HandleCloser>;

/// Null when this user may not open the process, or the process has ended.
Handle OpenForQuery(std::uint64_t processId) {
  return Handle(
      OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(processId)));
}

Seconds FromFileTime(const FILETIME& time) {
  ULARGE_INTEGER ticks{};
  ticks.LowPart = time.dwLowDateTime;
  ticks.HighPart = time.dwHighDateTime;
  return Seconds(static_cast<double>(ticks.QuadPart) * 1e-7);
}

Seconds Uptime() { return Seconds(static_cast<double>(GetTickCount64()) / 1000); }

/// In seconds of the file system's calendar.
Seconds TimeOfStart() {
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  return FromFileTime(now) - Uptime();
}

std::string HostName() {
  wchar_t name[256] = L"";
  DWORD size = 256;
  GetComputerNameExW(ComputerNameDnsHostname, name, &size);
  return Utf8(name);
}

/// The true version of Windows. The documented functions tell an older version to programs that do
/// not declare that they know the newer one.
std::string SystemVersion() {
  RTL_OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  using GetVersion = LONG(WINAPI*)(RTL_OSVERSIONINFOW*);
  const auto found =
      reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"ntdll"), "RtlGetVersion"));
  if (found != nullptr) reinterpret_cast<GetVersion>(found)(&version);
  return "Windows " + std::to_string(version.dwMajorVersion) + '.' +
         std::to_string(version.dwMinorVersion) + '.' + std::to_string(version.dwBuildNumber);
}

std::string Architecture() {
  SYSTEM_INFO info{};
  GetNativeSystemInfo(&info);
  switch (info.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_AMD64:
      return "x86_64";
    case PROCESSOR_ARCHITECTURE_ARM64:
      return "aarch64";
    default:
      return "unknown";
  }
}

CpuReading ReadCpu() {
  FILETIME idle{};
  FILETIME kernel{};  // idle time included
  FILETIME user{};
  GetSystemTimes(&idle, &kernel, &user);
  return {.cores = GetActiveProcessorCount(ALL_PROCESSOR_GROUPS),
          .user = FromFileTime(user),
          .system = FromFileTime(kernel) - FromFileTime(idle),
          .idle = FromFileTime(idle)};
}

std::uint64_t CachedBytes() {
  PERFORMANCE_INFORMATION info{};
  GetPerformanceInfo(&info, sizeof info);
  return std::uint64_t{info.SystemCache} * info.PageSize;
}

/// Windows tells the page file only together with the memory that it extends.
MemoryReading ReadMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  GlobalMemoryStatusEx(&status);
  const auto beyond = [](std::uint64_t both, std::uint64_t memory) {
    return both > memory ? both - memory : 0;
  };
  return {.total = status.ullTotalPhys,
          .free = status.ullAvailPhys,
          .available = status.ullAvailPhys,
          .cached = CachedBytes(),
          .swapTotal = beyond(status.ullTotalPageFile, status.ullTotalPhys),
          .swapFree = beyond(status.ullAvailPageFile, status.ullAvailPhys)};
}

std::string StateOf(IF_OPER_STATUS status) {
  switch (status) {
    case IfOperStatusUp:
      return "up";
    case IfOperStatusDown:
      return "down";
    case IfOperStatusDormant:
      return "dormant";
    default:
      return "unknown";
  }
}

/// Such as "02:00:5e:10:00:01".
std::string AddressOf(const MIB_IF_ROW2& row) {
  std::string address;
  for (ULONG i = 0; i < row.PhysicalAddressLength; ++i) {
    char part[4] = "";
    std::snprintf(part, sizeof part, ":%02x", unsigned{row.PhysicalAddress[i]});
    address += part + (i == 0 ? 1 : 0);
  }
  return address;
}

InterfaceReading MakeInterface(const MIB_IF_ROW2& row) {
  return {.name = Utf8(row.Alias),
          .state = StateOf(row.OperStatus),
          .address = AddressOf(row),
          .receivedBytes = row.InOctets,
          .receivedPackets = row.InUcastPkts + row.InNUcastPkts,
          .sentBytes = row.OutOctets,
          .sentPackets = row.OutUcastPkts + row.OutNUcastPkts,
          .errors = row.InErrors + row.OutErrors};
}

/// Leaves out the layers that watch and filter an adapter, because they count its traffic once
/// more.
std::vector<InterfaceReading> ReadInterfaces() {
  MIB_IF_TABLE2* table = nullptr;
  if (GetIfTable2(&table) != NO_ERROR) return {};
  const std::unique_ptr<MIB_IF_TABLE2, decltype(&FreeMibTable)> owner(table, &FreeMibTable);
  std::vector<InterfaceReading> interfaces;
  for (ULONG i = 0; i < table->NumEntries; ++i) {
    const MIB_IF_ROW2& row = table->Table[i];
    if (row.InterfaceAndOperStatusFlags.FilterInterface == 0)
      interfaces.push_back(MakeInterface(row));
  }
  return interfaces;
}

class WindowsReader final : public SystemReader {
 public:
  SystemReading Read() override {
    SystemReading reading;
    reading.taken = std::chrono::steady_clock::now();
    reading.host = {.name = HostName(),
                    .system = SystemVersion(),
                    .architecture = Architecture(),
                    .uptime = Uptime()};
    reading.cpu = ReadCpu();
    reading.memory = ReadMemory();
    reading.processes = ReadProcesses();
    for (const auto& process : reading.processes) reading.load.threads += process.threads;
    reading.interfaces = ReadInterfaces();
    return reading;
  }

  CommandReading ReadCommand(std::uint64_t processId) override {
    CommandReading command;
    const Handle process = OpenForQuery(processId);
    wchar_t path[MAX_PATH] = L"";
    DWORD size = MAX_PATH;
    if (process && QueryFullProcessImageNameW(process.get(), 0, path, &size) != 0) {
      command.executable = Utf8({path, size});
    }
    return command;
  }

 private:
  [[nodiscard]] std::vector<ProcessReading> ReadProcesses() {
    std::vector<ProcessReading> processes;
    const Handle all(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (all.get() == INVALID_HANDLE_VALUE) return processes;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(all.get(), &entry); more != 0;
         more = Process32NextW(all.get(), &entry)) {
      processes.push_back(MakeProcess(entry));
    }
    return processes;
  }

  [[nodiscard]] ProcessReading MakeProcess(const PROCESSENTRY32W& entry) {
    ProcessReading reading;
    reading.id = entry.th32ProcessID;
    reading.parent = entry.th32ParentProcessID;
    reading.name = Utf8(entry.szExeFile);
    reading.threads = entry.cntThreads;
    const Handle process = OpenForQuery(reading.id);
    if (!process) return reading;
    FILETIME created{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(process.get(), &created, &ended, &kernel, &user);
    reading.cpuTime = FromFileTime(kernel) + FromFileTime(user);
    reading.started = std::max(Seconds(0), FromFileTime(created) - start);
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(process.get(), &memory, sizeof memory);
    reading.residentBytes = memory.WorkingSetSize;
    reading.virtualBytes = memory.PagefileUsage;
    reading.user = UserOf(process.get());
    return reading;
  }

  [[nodiscard]] std::string UserOf(HANDLE process) {
    HANDLE opened = nullptr;
    if (OpenProcessToken(process, TOKEN_QUERY, &opened) == 0) return {};
    const Handle token(opened);
    alignas(TOKEN_USER) char owner[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size = 0;
    if (GetTokenInformation(opened, TokenUser, owner, sizeof owner, &size) == 0) return {};
    return UserName(reinterpret_cast<const TOKEN_USER*>(owner)->User.Sid);
  }

  /// The user's name; empty for a user without a name. Each user is looked up once.
  [[nodiscard]] const std::string& UserName(PSID id) {
    const std::string key(static_cast<const char*>(id), GetLengthSid(id));
    const auto [known, isNew] = users.try_emplace(key);
    wchar_t name[256] = L"";
    wchar_t domain[256] = L"";
    DWORD nameSize = 256;
    DWORD domainSize = 256;
    SID_NAME_USE use{};
    if (isNew && LookupAccountSidW(nullptr, id, name, &nameSize, domain, &domainSize, &use) != 0) {
      known->second = Utf8(name);
    }
    return known->second;
  }

  /// Computed once: if it varied from reading to reading, so would the start times of processes.
  Seconds start = TimeOfStart();
  std::map<std::string, std::string> users;
};

}  // namespace

std::unique_ptr<SystemReader> SystemReader::Create() { return std::make_unique<WindowsReader>(); }

}  // namespace Sysmon

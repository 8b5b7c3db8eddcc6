// SPDX-License-Identifier: Apache-2.0
/// Parsers of the texts that Linux keeps in /proc.
///
/// They accept any bytes: a part that is missing, torn or not understood is left out or stays zero.
/// They read no files, but texts that are given to them. Times are in the kernel's clock ticks
/// where the kernel counts in them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SystemReader.h"

namespace Sysmon {

/// The fields of /proc/<id>/stat that this program uses.
struct ProcessStat {
  std::uint64_t id = 0;
  std::uint64_t parent = 0;
  std::string name;
  char state = '?';
  std::uint64_t userTicks = 0;
  std::uint64_t systemTicks = 0;
  std::uint64_t threads = 0;
  std::uint64_t startTicks = 0;
  std::uint64_t virtualBytes = 0;
};

/// Fields of /proc/<id>/status, where the resident size is exact.
struct ProcessStatus {
  std::uint64_t userId = 0;
  std::uint64_t residentBytes = 0;
};

/// The first line of /proc/stat, and how many processors have a line of their own.
struct CpuStat {
  std::uint64_t cores = 0;
  std::uint64_t user = 0;
  std::uint64_t nice = 0;
  std::uint64_t system = 0;
  std::uint64_t idle = 0;
  std::uint64_t waiting = 0;
  std::uint64_t interrupts = 0;
  std::uint64_t softInterrupts = 0;
  std::uint64_t stolen = 0;
};

/// A decimal number that is the whole text.
[[nodiscard]] std::optional<std::uint64_t> ParseCount(std::string_view text);
/// /proc/<id>/stat. Nothing when the line is cut short. The name may hold blanks, parentheses and
/// line ends.
[[nodiscard]] std::optional<ProcessStat> ParseProcessStat(std::string_view text);
/// /proc/<id>/status. The user is the effective one.
[[nodiscard]] ProcessStatus ParseProcessStatus(std::string_view text);
/// /proc/<id>/cmdline: the arguments, with blanks between them.
[[nodiscard]] std::string ParseCommandLine(std::string_view text);
/// /proc/stat.
[[nodiscard]] CpuStat ParseCpuStat(std::string_view text);
/// /proc/meminfo.
[[nodiscard]] MemoryReading ParseMemory(std::string_view text);
/// /proc/loadavg.
[[nodiscard]] LoadReading ParseLoad(std::string_view text);
/// /proc/uptime.
[[nodiscard]] Seconds ParseUptime(std::string_view text);
/// /proc/net/dev.
[[nodiscard]] std::vector<InterfaceReading> ParseInterfaces(std::string_view text);
/// The state that a letter of /proc/<id>/stat stands for.
[[nodiscard]] std::string_view StateName(char letter);

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "ProcText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace Sysmon {

namespace {

constexpr std::string_view blanks = " \t\n\r";

template <class Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// Reads an amount such as a number of seconds. Gives 0 for one that is negative or not finite.
double ParseAmount(std::string_view text) {
  const double number = ParseNumber<double>(text).value_or(0);
  return std::isfinite(number) && number > 0 ? number : 0;
}

/// Takes the part before the separator off the front of the text, and the separator with it.
std::string_view TakeUntil(std::string_view& text, char separator) {
  const auto end = std::min(text.find(separator), text.size());
  const auto part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  auto begin = text.find_first_not_of(blanks);
  while (begin != text.npos) {
    const auto end = std::min(text.find_first_of(blanks, begin), text.size());
    words.push_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(blanks, end);
  }
  return words;
}

/// The number at an index of the list; 0 where there is none.
std::uint64_t CountAt(const std::vector<std::string_view>& words, std::size_t index) {
  return index < words.size() ? ParseCount(words[index]).value_or(0) : 0;
}

std::uint64_t Kibibytes(std::string_view text) {
  const auto words = Words(text);
  const auto count = CountAt(words, 0);
  return count > std::numeric_limits<std::uint64_t>::max() / 1024 ? 0 : count * 1024;
}

}  // namespace

std::optional<std::uint64_t> ParseCount(std::string_view text) {
  return ParseNumber<std::uint64_t>(text);
}

std::optional<ProcessStat> ParseProcessStat(std::string_view text) {
  const auto open = text.find('(');
  const auto close = text.rfind(')');  // the last one, since a name may hold parentheses
  if (open == text.npos || close == text.npos || close < open) return std::nullopt;
  const auto before = Words(text.substr(0, open));
  const auto id = before.size() == 1 ? ParseCount(before[0]) : std::nullopt;
  const auto after = Words(text.substr(close + 1));
  if (!id || after.size() < 21) return std::nullopt;
  return ProcessStat{.id = *id,
                     .parent = CountAt(after, 1),
                     .name = std::string(text.substr(open + 1, close - open - 1)),
                     .state = after[0].front(),
                     .userTicks = CountAt(after, 11),
                     .systemTicks = CountAt(after, 12),
                     .threads = CountAt(after, 17),
                     .startTicks = CountAt(after, 19),
                     .virtualBytes = CountAt(after, 20)};
}

ProcessStatus ParseProcessStatus(std::string_view text) {
  ProcessStatus status;
  while (!text.empty()) {
    auto line = TakeUntil(text, '\n');
    const auto key = TakeUntil(line, ':');
    if (key == "Uid") status.userId = CountAt(Words(line), 1);
    if (key == "VmRSS") status.residentBytes = Kibibytes(line);
  }
  return status;
}

std::string ParseCommandLine(std::string_view text) {
  const auto last = text.find_last_not_of('\0');
  std::string line(last == text.npos ? std::string_view() : text.substr(0, last + 1));
  std::ranges::replace(line, '\0', ' ');
  return line;
}

CpuStat ParseCpuStat(std::string_view text) {
  CpuStat stat;
  while (!text.empty()) {
    const auto words = Words(TakeUntil(text, '\n'));
    if (words.empty() || !words[0].starts_with("cpu")) continue;
    if (ParseCount(words[0].substr(3))) ++stat.cores;
    if (words[0] != "cpu") continue;
    std::uint64_t* const fields[] = {&stat.user,           &stat.nice,    &stat.system,
                                     &stat.idle,           &stat.waiting, &stat.interrupts,
                                     &stat.softInterrupts, &stat.stolen};
    std::size_t index = 0;
    for (auto* field : fields) *field = CountAt(words, ++index);
  }
  return stat;
}

MemoryReading ParseMemory(std::string_view text) {
  MemoryReading memory;
  const std::pair<std::string_view, std::uint64_t*> fields[] = {
      {"MemTotal", &memory.total},         {"MemFree", &memory.free},
      {"MemAvailable", &memory.available}, {"Buffers", &memory.buffers},
      {"Cached", &memory.cached},          {"SwapTotal", &memory.swapTotal},
      {"SwapFree", &memory.swapFree},
  };
  while (!text.empty()) {
    auto line = TakeUntil(text, '\n');
    const auto key = TakeUntil(line, ':');
    for (const auto& [name, field] : fields) {
      if (key == name) *field = Kibibytes(line);
    }
  }
  return memory;
}

LoadReading ParseLoad(std::string_view text) {
  const auto words = Words(text);
  LoadReading load;
  double* const averages[] = {&load.one, &load.five, &load.fifteen};
  for (std::size_t i = 0; i < std::min(words.size(), std::size(averages)); ++i) {
    *averages[i] = ParseAmount(words[i]);
  }
  auto threads = words.size() > 3 ? words[3] : std::string_view();
  load.running = ParseCount(TakeUntil(threads, '/')).value_or(0);
  load.threads = ParseCount(threads).value_or(0);
  return load;
}

Seconds ParseUptime(std::string_view text) {
  const auto words = Words(text);
  return Seconds(words.empty() ? 0 : ParseAmount(words[0]));
}

std::vector<InterfaceReading> ParseInterfaces(std::string_view text) {
  std::vector<InterfaceReading> interfaces;
  while (!text.empty()) {
    const auto line = TakeUntil(text, '\n');
    const auto colon = line.rfind(':');  // the last one: the name of an alias holds a colon, too
    if (colon == line.npos) continue;
    const auto names = Words(line.substr(0, colon));
    const auto counts = Words(line.substr(colon + 1));
    if (names.size() != 1 || counts.size() < 11) continue;
    InterfaceReading reading;
    reading.name = names[0];
    reading.receivedBytes = CountAt(counts, 0);
    reading.receivedPackets = CountAt(counts, 1);
    reading.sentBytes = CountAt(counts, 8);
    reading.sentPackets = CountAt(counts, 9);
    reading.errors = CountAt(counts, 2) + CountAt(counts, 10);
    interfaces.push_back(std::move(reading));
  }
  return interfaces;
}

std::string_view StateName(char letter) {
  switch (letter) {
    case 'R':
      return "running";
    case 'S':
      return "sleeping";
    case 'D':
      return "waiting";  // for a device; it cannot be interrupted
    case 'I':
      return "idle";
    case 'T':
      return "stopped";
    case 't':
      return "traced";
    case 'Z':
      return "zombie";
    case 'X':
      return "dead";
    default:
      return "unknown";
  }
}

}  // namespace Sysmon

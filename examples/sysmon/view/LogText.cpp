// SPDX-License-Identifier: Apache-2.0
#include "LogText.h"

#include <algorithm>
#include <ctime>
#include <string_view>

#include "Text.h"

namespace Sysmon {

namespace {

constexpr int clockWidth = 10;
constexpr int nameWidth = 16;

VtrString ShowClock(std::chrono::system_clock::time_point time) {
  const std::tm local = LocalTime(std::chrono::system_clock::to_time_t(time));
  return VtrString().Format(L"%02d:%02d:%02d", local.tm_hour, local.tm_min, local.tm_sec);
}

VtrString ShowArguments(const EventLog::Entry& entry) {
  VtrString all;
  for (const EventArgument& argument : entry.arguments) {
    for (const auto& [name, value] : argument) {
      if (!all.IsEmpty()) all = all + L"  ";
      all = all + (name.IsEmpty() ? name : name + L" ") + Show(value);
    }
  }
  return all;
}

}  // namespace

bool IsMeasurement(const EventLog::Entry& entry) {
  return std::wstring_view(entry.name).starts_with(L"Measured.") || entry.name == L"SampleTaken";
}

VtrString ShowEntry(const EventLog::Entry& entry) {
  const std::wstring clock = Fit(ShowClock(entry.time), clockWidth, Align::Left);
  const int width = std::max<int>(nameWidth, entry.name.GetLength() + 1);
  return VtrString(clock + Fit(entry.name, width, Align::Left)) + ShowArguments(entry);
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "Summary.h"

#include <cwchar>
#include <iterator>
#include <utility>
#include <vector>

namespace Sysmon {

namespace {

struct Field {
  int line = 0;
  int column = 0;
  const wchar_t* label = L"";
  const wchar_t* source = L"";
  const wchar_t* property = L"";
  int width = 0;
  bool isBar = false;
  /// The name of a property of the alarms. While the property is true, the field stands out.
  const wchar_t* alarm = nullptr;
};

constexpr Field fields[] = {
    {0, 0, L"Host    ", L"Host", L"Name", 20},
    {0, 30, L"System ", L"Host", L"System", 24},
    {0, 63, L"Up ", L"Host", L"Uptime", 12},
    {1, 0, L"Cpu     ", L"Cpu", L"Usage", 20, true},
    {1, 30, L"Usage  ", L"Cpu", L"Usage", 8, false, L"CpuRaised"},
    {1, 47, L"User ", L"Cpu", L"User", 8},
    {1, 63, L"System ", L"Cpu", L"System", 8},
    {2, 0, L"Memory  ", L"Memory", L"Usage", 20, true},
    {2, 30, L"Usage  ", L"Memory", L"Usage", 8, false, L"MemoryRaised"},
    {2, 47, L"Used ", L"Memory", L"Used", 10},
    {2, 63, L"Total ", L"Memory", L"Total", 10},
    {3, 0, L"Load    ", L"Load", L"One", 6, false, L"LoadRaised"},
    {3, 15, L"", L"Load", L"Five", 6},
    {3, 22, L"", L"Load", L"Fifteen", 6},
    {3, 30, L"Processes ", L"Host", L"Processes", 6},
    {3, 47, L"Threads ", L"Load", L"Threads", 7},
    {3, 63, L"Running ", L"Load", L"Running", 5},
    {4, 0, L"Alarms  Cpu ", L"Alarms", L"Cpu", 8},
    {4, 30, L"Memory ", L"Alarms", L"Memory", 8},
    {4, 47, L"Load ", L"Alarms", L"Load", 9},
};

std::vector<Watch::Name> WatchedNames() {
  std::vector<Watch::Name> names;
  for (const Field& field : fields) names.push_back({field.source, field.property});
  for (const Field& field : fields) {
    if (field.alarm != nullptr) names.push_back({L"Alarms", field.alarm});
  }
  return names;
}

VtrString Text(const Watch& watch, std::size_t index, const Field& field) {
  const auto& value = watch.At(index);
  return field.isBar && value ? VtrString(Bar(*value, field.width)) : watch.TextAt(index);
}

}  // namespace

Summary::Summary(IDataSourceProvider& root) : watch(root, WatchedNames()) {}

void Summary::Draw(Surface& surface, const Area& area) {
  const bool isWhole = !std::exchange(isShown, true);
  std::size_t index = 0;
  std::size_t alarm = std::size(fields);
  for (const Field& field : fields) {
    const int labelWidth = static_cast<int>(std::wcslen(field.label));
    const Place label = area.At(field.line, field.column, labelWidth);
    const Place value = area.At(field.line, field.column + labelWidth, field.width);
    const bool hasAlarm = field.alarm != nullptr;
    const bool isRaised = hasAlarm && watch.At(alarm) == Value(true);
    if (isWhole) surface.Write(label, field.label, Style::Label);
    if (isWhole || watch.IsChanged(index) || (hasAlarm && watch.IsChanged(alarm))) {
      surface.Write(value, Text(watch, index, field), isRaised ? Style::Alarm : Style::Plain);
    }
    ++index;
    if (hasAlarm) ++alarm;
  }
  watch.Settle();
}

}  // namespace Sysmon

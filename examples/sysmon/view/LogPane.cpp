// SPDX-License-Identifier: Apache-2.0
#include "LogPane.h"

#include <algorithm>
#include <ctime>
#include <string_view>
#include <utility>

namespace Sysmon {

namespace {

constexpr int clockWidth = 10;
constexpr int nameWidth = 16;

bool IsMeasurement(const EventLog::Entry& entry) {
  return std::wstring_view(entry.name).starts_with(L"Measured.") || entry.name == L"SampleTaken";
}

bool IsAlarm(const EventLog::Entry& entry) { return entry.name == L"AlarmRaised"; }

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

VtrString ShowEntry(const EventLog::Entry& entry) {
  const std::wstring clock = Fit(ShowClock(entry.time), clockWidth, Align::Left);
  const int width = std::max<int>(nameWidth, entry.name.GetLength() + 1);
  return VtrString(clock + Fit(entry.name, width, Align::Left)) + ShowArguments(entry);
}

}  // namespace

void LogPane::Invalidate() {
  shown.clear();
  addedWhenShown = 0;
}

void LogPane::Switch() {
  choice = choice == Choice::None ? Choice::Happenings
                                  : static_cast<Choice>(static_cast<int>(choice) + 1);
  Invalidate();
}

/// Draws the title, which keeps the newest alarm in sight, and the newest events, the newest last.
std::vector<LogPane::Line> LogPane::NewestLines(std::size_t count) const {
  std::vector<Line> lines;
  const auto& entries = log.Entries();
  for (auto entry = entries.rbegin(); entry != entries.rend() && lines.size() + 1 < count;
       ++entry) {
    if (choice == Choice::Happenings && IsMeasurement(*entry)) continue;
    lines.push_back({ShowEntry(*entry), IsAlarm(*entry) ? Style::Alarm : Style::Plain});
  }
  lines.push_back({Title(), Style::Title});
  std::ranges::reverse(lines);
  lines.resize(count);
  return lines;
}

VtrString LogPane::Title() const {
  const VtrString title = choice == Choice::All ? L"ALL EVENTS" : L"EVENTS";
  const auto& entries = log.Entries();
  const auto alarm = std::find_if(entries.rbegin(), entries.rend(), IsAlarm);
  return alarm == entries.rend() ? title : title + L"  last alarm " + ShowEntry(*alarm);
}

void LogPane::Draw(Surface& surface, const Area& area) {
  if (area.height < 1 || (!shown.empty() && addedWhenShown == log.Added())) return;
  auto lines = NewestLines(static_cast<std::size_t>(area.height));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!shown.empty() && lines[i] == shown[i]) continue;
    surface.Write(area.At(static_cast<int>(i), 0, area.width), lines[i].text, lines[i].style);
  }
  shown = std::move(lines);
  addedWhenShown = log.Added();
}

}  // namespace Sysmon

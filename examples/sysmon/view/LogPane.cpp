// SPDX-License-Identifier: Apache-2.0
#include "LogPane.h"

#include <algorithm>
#include <utility>

#include "LogText.h"

namespace Sysmon {

namespace {

bool IsAlarm(const EventLog::Entry& entry) { return entry.name == L"AlarmRaised"; }

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

// SPDX-License-Identifier: Apache-2.0
/// Shows the newest events, one in a line: all of them, or all but the measurements.
#pragma once

#include <string>
#include <vector>

#include "../common/EventLog.h"
#include "Surface.h"

namespace Sysmon {

class LogPane {
 public:
  explicit LogPane(const EventLog& eventLog) : log(eventLog) {}

  void Draw(Surface& surface, const Area& area);
  /// Draws everything the next time.
  void Invalidate();
  /// Changes what is shown: from all but the measurements to all events, to none, and back.
  void Switch();
  [[nodiscard]] bool IsVisible() const { return choice != Choice::None; }

 private:
  enum class Choice { Happenings, All, None };
  struct Line {
    VtrString text;
    Style style = Style::Plain;

    friend bool operator==(const Line&, const Line&) = default;
  };

  [[nodiscard]] std::vector<Line> NewestLines(std::size_t count) const;
  [[nodiscard]] VtrString Title() const;

  const EventLog& log;
  Choice choice = Choice::Happenings;
  Count addedWhenShown = 0;
  /// Empty when everything is to be drawn.
  std::vector<Line> shown;
};

}  // namespace Sysmon

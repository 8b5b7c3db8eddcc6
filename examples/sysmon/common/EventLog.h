// SPDX-License-Identifier: Apache-2.0
/// The newest events, in order of delivery, in the vocabulary that model and views share.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

#include "Quantities.h"

namespace Sysmon {

/// A part of an argument. A plain argument is one figure without a name.
struct EventFigure {
  VtrString name;
  Value value;
};
using EventArgument = std::vector<EventFigure>;

class EventLog {
 public:
  struct Entry {
    std::chrono::system_clock::time_point time;
    VtrString name;
    std::vector<EventArgument> arguments;
  };

  /// Keeps so many entries and lets the oldest ones go.
  explicit EventLog(std::size_t mostEntries) : most(mostEntries) {}

  void Add(Entry entry) {
    entries.push_back(std::move(entry));
    ++added;
    if (entries.size() > most) entries.pop_front();
  }

  /// Oldest first.
  [[nodiscard]] const std::deque<Entry>& Entries() const { return entries; }
  /// How many there ever were.
  [[nodiscard]] Count Added() const { return added; }
  [[nodiscard]] Count Dropped() const { return added - entries.size(); }

 private:
  std::size_t most;
  std::deque<Entry> entries;
  Count added = 0;
};

}  // namespace Sysmon

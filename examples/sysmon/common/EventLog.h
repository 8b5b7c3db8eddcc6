// SPDX-License-Identifier: Apache-2.0
/// A log of the newest events, in order of delivery, with arguments of the types that model and
/// views share.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

#include "Quantities.h"

namespace Sysmon {

/// One part of an argument. An argument without parts is one figure without a name.
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

  /// Makes a log that keeps as many entries, and forgets the oldest ones.
  explicit EventLog(std::size_t mostEntries) : most(mostEntries) {}

  void Add(Entry entry) {
    entries.push_back(std::move(entry));
    ++added;
    if (entries.size() > most) entries.pop_front();
  }

  /// Oldest first.
  [[nodiscard]] const std::deque<Entry>& Entries() const { return entries; }
  /// How many events were ever added.
  [[nodiscard]] Count Added() const { return added; }
  [[nodiscard]] Count Dropped() const { return added - entries.size(); }

 private:
  std::size_t most;
  std::deque<Entry> entries;
  Count added = 0;
};

}  // namespace Sysmon

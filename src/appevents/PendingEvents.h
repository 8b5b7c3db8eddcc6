// SPDX-License-Identifier: Apache-2.0
/// PendingEvents is the queue of an event broadcaster: entries in order of arrival, with an index
/// by name.
///
/// Replace puts the new event into the newest entry of its name and links this entry to the end of
/// the order, so that it moves no entry and scans nothing. The index and the links are made only
/// when a name is sought, and only over the entries that came since the last time, so plain
/// appending does not pay for them. Taking events out singly leaves empty entries behind, until the
/// queue is empty or its memory would have to grow. The broadcaster's lock guards the queue.
///
/// 1. An entry before `indexed` is linked or empty. The entries from `indexed` on have events, and
///    come after the linked ones in the order.
/// 2. `newest` leads to the last entry of each name before `indexed`. If that entry is empty, no
///    event of the name is left before `indexed`, because events leave from the front.
///
/// docs/how-it-works.md has a drawing.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/appevents/EventBroadcaster.h"
#include "DataBinding/appevents/details/EventName.h"
#include "OneThread.h"

namespace DataBinding::details {

/// Holds the broadcaster's lock, under which the queue is used.
class QueueLock {
 public:
  explicit QueueLock(AEB::ThreadingPolicy& policy) : held(policy) { held.EnterCriticalSection(); }
  QueueLock(const QueueLock&) = delete;
  QueueLock& operator=(const QueueLock&) = delete;
  ~QueueLock() { held.LeaveCriticalSection(); }

 private:
  AEB::ThreadingPolicy& held;
};

class PendingEvents {
 public:
  using EventPtr = std::shared_ptr<PendingEventBase>;
  struct Entry;
  class Batch;

  /// The hash of an event's name, which Replace needs. It is computed outside the lock.
  [[nodiscard]] static std::uint64_t Hash(const VtrString& name,
                                          const PendingEventBase& event) noexcept {
    const EventName* const known = event.KnownName();
    return known == nullptr ? std::hash<VtrString>()(name) : known->Hash();
  }

  void Append(const VtrString& name, EventPtr&& event);
  /// Replaces the newest event of the name, moves its entry to the end of the queue, and gives the
  /// replaced event. Appends the event and gives null if the queue has none of that name.
  [[nodiscard]] EventPtr Replace(const VtrString& name, std::uint64_t hash, EventPtr&& event);
  /// Begins a pass and gives its number. Events that are queued from now on are not of this pass.
  [[nodiscard]] std::uint32_t BeginPass() noexcept { return ++pass; }
  /// Takes out the oldest event that was queued before that pass began, or null.
  [[nodiscard]] EventPtr TakeFirst(std::uint32_t ofPass) noexcept;
  [[nodiscard]] bool IsEmpty() const noexcept { return events == 0; }
  /// Moves all entries to an empty batch, and goes on with the memory of that batch.
  void Take(Batch& batch) noexcept;
  /// Moves the events for which matches(name, event) is true to `dropped`.
  template <class Matches>
  void Drop(Matches matches, std::vector<EventPtr>& dropped);

 private:
  static constexpr std::uint32_t none = UINT32_MAX;

  void IndexRest();
  void GrowIndex();
  void ClearIndex() noexcept;
  void MakeRoom();
  void CloseHoles(std::vector<Entry> room) noexcept;
  [[nodiscard]] std::vector<Entry> Room() const;
  void Link(std::uint32_t entry) noexcept;
  void Unlink(std::uint32_t entry) noexcept;
  [[nodiscard]] std::uint32_t& Slot(const VtrString& name, std::uint64_t hash);
  [[nodiscard]] std::uint32_t FindLast(const VtrString& name, std::uint64_t hash);

  std::vector<Entry> entries;
  std::size_t events = 0;
  std::uint32_t pass = 0;
  /// The ends of the list of indexed entries; the other entries follow as they stand.
  std::uint32_t first = none;
  std::uint32_t last = none;
  std::size_t indexed = 0;
  /// A hash table with open addressing: the newest indexed entry of each name.
  std::vector<std::uint32_t> newest;
  std::size_t names = 0;

 public:
  /// An emptied batch, kept for its memory. Only the delivering thread uses it; no lock guards it.
  std::unique_ptr<Batch> spare;
  /// Checks that deliveries, subscriptions and holds are made by one thread at a time.
  OneThread delivering;
};

struct PendingEvents::Entry {
  Entry(const VtrString& eventName, EventPtr&& queued, std::uint32_t current) noexcept
      : event(std::move(queued)), name(eventName), pass(current) {}

  /// Compares by the difference, because the numbers may wrap around between two passes.
  [[nodiscard]] bool IsBefore(std::uint32_t ofPass) const noexcept {
    return static_cast<std::int32_t>(pass - ofPass) < 0;
  }
  template <class Matches>
  [[nodiscard]] bool Fits(const Matches& matches) const {
    return event != nullptr && matches(name, *event);
  }

  EventPtr event;  // null once it was taken out or dropped
  VtrString name;
  std::uint32_t pass;  // the number of the pass that had begun last when the event was queued
  std::uint32_t hash = 0;
  std::uint32_t previous = none;
  std::uint32_t next = none;
};

/// The events that DispatchPendingEvents delivers in one call.
class PendingEvents::Batch {
 public:
  /// Takes the entries over. Those before `linked` are linked from `firstLinked` on.
  void Fill(std::vector<Entry>& queued, std::uint32_t firstLinked, std::size_t linked) noexcept {
    entries.swap(queued);
    first = firstLinked;
    rest = entries.data() + linked;
    end = entries.data() + entries.size();
  }
  /// The next entry that has an event, or null at the end.
  [[nodiscard]] Entry* Next() noexcept {
    while (first != none) {
      Entry& entry = entries[first];
      first = entry.next;
      if (entry.event != nullptr) return &entry;
    }
    while (rest != end && rest->event == nullptr) ++rest;
    return rest == end ? nullptr : rest++;
  }
  /// False when Next would give null.
  [[nodiscard]] bool HasNext() const noexcept;
  void Clear() noexcept { entries.clear(); }
  /// Moves the events that match to `dropped`, except the one that is being delivered.
  template <class Matches>
  void Drop(const EventPtr& current, const Matches& matches, std::vector<EventPtr>& dropped) {
    for (Entry& entry : entries) {
      if (&entry.event == &current || !entry.Fits(matches)) continue;
      dropped.push_back(nullptr);
      dropped.back().swap(entry.event);
    }
  }

 private:
  std::vector<Entry> entries;
  /// The next of the linked entries.
  std::uint32_t first = none;
  /// The next of the entries that follow the linked ones, and their end.
  Entry* rest = nullptr;
  Entry* end = nullptr;
};

inline void PendingEvents::Append(const VtrString& name, EventPtr&& event) {
  if (entries.size() == entries.capacity()) [[unlikely]]
    MakeRoom();
  entries.emplace_back(name, std::move(event), pass);
  ++events;
}

template <class Matches>
void PendingEvents::Drop(Matches matches, std::vector<EventPtr>& dropped) {
  const auto fits = [&matches](const Entry& entry) { return entry.Fits(matches); };
  const auto count = static_cast<std::size_t>(std::ranges::count_if(entries, fits));
  if (count == 0) return;
  dropped.reserve(dropped.size() + count);
  auto room = Room();
  for (Entry& entry : entries) {
    if (fits(entry)) dropped.push_back(std::move(entry.event));
  }
  CloseHoles(std::move(room));
}

}  // namespace DataBinding::details

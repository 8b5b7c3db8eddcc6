// SPDX-License-Identifier: Apache-2.0
/// The queue of an event broadcaster: entries in order of arrival, with an index by name.
///
/// Replacing the newest entry of a name puts the new event into that entry and links the entry to
/// the end of the order, so that nothing moves and nothing is scanned. Index and links are made
/// only when a name is first sought, and only over what came since: plain appending does not pay
/// for them. Taking events singly leaves empty entries behind, until the queue is empty or its
/// memory would have to grow. The owner's lock guards all of it.
///
/// 1. An entry before `indexed` is linked or empty. The others have events and follow the linked.
/// 2. `newest` knows the last entry of each name among those before `indexed`. Where that one is
///    empty, no event of the name is among them: events leave from the front.
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

class PendingEvents {
 public:
  using EventPtr = std::shared_ptr<PendingEventBase>;
  class Entry;
  class Batch;

  [[nodiscard]] static std::uint64_t Hash(const VtrString& name) noexcept {
    return std::hash<VtrString>()(name);
  }
  [[nodiscard]] static std::uint64_t Hash(const EventName& name) noexcept { return name.Hash(); }

  template <class Name>
  void Append(const Name& name, EventPtr&& event);
  /// Puts the event in the place of the newest one of its name, at the end of the queue, and gives
  /// that one; appends it and gives null where there is none.
  template <class Name>
  [[nodiscard]] EventPtr Replace(const Name& name, std::uint64_t hash, EventPtr&& event);
  /// Begins a pass and gives its number: events that are queued from now on come after it.
  [[nodiscard]] std::uint32_t BeginPass() noexcept { return ++pass; }
  /// Takes out the oldest event that was queued before that pass began, or null.
  [[nodiscard]] EventPtr TakeFirst(std::uint32_t ofPass) noexcept;
  [[nodiscard]] bool IsEmpty() const noexcept { return events == 0; }
  /// Exchanges all entries for an empty batch, whose memory is used on.
  void Take(Batch& batch) noexcept;
  /// Moves the events of which matches(name, event) is true to `dropped`.
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

  static const VtrString& TextOf(const VtrString& name) noexcept { return name; }
  static const VtrString& TextOf(const EventName& name) noexcept { return name.Text(); }

  std::vector<Entry> entries;
  std::size_t events = 0;
  std::uint32_t pass = 0;
  /// The order of those entries that are indexed; the others follow as they stand.
  std::uint32_t first = none;
  std::uint32_t last = none;
  std::size_t indexed = 0;
  /// Open addressing: the newest entry of each name indexed so far, found by the name's hash.
  std::vector<std::uint32_t> newest;
  std::size_t names = 0;

 public:
  /// An emptied batch, kept for its memory. The delivering thread's, not guarded by the lock.
  std::unique_ptr<Batch> spare;
  /// Deliveries, and changes of what only the delivering thread uses.
  OneThread delivering;
};

class PendingEvents::Entry {
 public:
  Entry(VtrString name, EventPtr&& queued, std::uint32_t current) noexcept
      : event(std::move(queued)), ownName(std::move(name)), pass(current) {}
  Entry(const EventName& name, EventPtr&& queued, std::uint32_t current) noexcept
      : event(std::move(queued)), permanentName(&name.Text()), pass(current) {}

  [[nodiscard]] const VtrString& Name() const noexcept {
    return permanentName == nullptr ? ownName : *permanentName;
  }
  /// Looks at the texts only where it must: they lie elsewhere.
  [[nodiscard]] bool IsNamed(const VtrString& name) const noexcept {
    return permanentName == &name || Name() == name;
  }

  /// Numbers may wrap around between two passes.
  [[nodiscard]] bool IsBefore(std::uint32_t ofPass) const noexcept {
    return static_cast<std::int32_t>(pass - ofPass) < 0;
  }
  template <class Matches>
  [[nodiscard]] bool Fits(const Matches& matches) const {
    return event != nullptr && matches(Name(), *event);
  }

  EventPtr event;  // null once it was taken out

 private:
  friend class PendingEvents;
  friend class Batch;

  VtrString ownName;
  const VtrString* permanentName = nullptr;  // one that is never destroyed needs no counting
  std::uint32_t pass;  // the last one that had begun when the event was queued
  std::uint32_t hash = 0;
  std::uint32_t previous = none;
  std::uint32_t next = none;
};

/// What is dispatched at one time.
class PendingEvents::Batch {
 public:
  /// The next event in order, or null at the end.
  [[nodiscard]] const EventPtr* Next() noexcept {
    const Entry* const next = NextEntry();
    return next == nullptr ? nullptr : &next->event;
  }
  /// False when Next would give null.
  [[nodiscard]] bool HasNext() const noexcept;
  void Clear() noexcept { entries.clear(); }
  /// Moves the events that match, but for the current one, to `dropped`.
  template <class Matches>
  void Drop(const EventPtr& current, const Matches& matches, std::vector<EventPtr>& dropped) {
    for (Entry& entry : entries) {
      if (&entry.event == &current || !entry.Fits(matches)) continue;
      dropped.push_back(nullptr);
      dropped.back().swap(entry.event);
    }
  }

 private:
  friend class PendingEvents;

  [[nodiscard]] Entry* NextEntry() noexcept {
    while (first != none) {
      Entry& entry = entries[first];
      first = entry.next;
      if (entry.event != nullptr) return &entry;
    }
    while (rest != end && rest->event == nullptr) ++rest;
    return rest == end ? nullptr : rest++;
  }

  std::vector<Entry> entries;
  /// The next of the linked entries, and of those that follow them.
  std::uint32_t first = none;
  Entry* rest = nullptr;
  Entry* end = nullptr;
};

template <class Name>
inline void PendingEvents::Append(const Name& name, EventPtr&& event) {
  if (entries.size() == entries.capacity()) [[unlikely]]
    MakeRoom();
  entries.emplace_back(name, std::move(event), pass);
  ++events;
}

template <class Name>
PendingEvents::EventPtr PendingEvents::Replace(const Name& name, std::uint64_t hash,
                                               EventPtr&& event) {
  const std::uint32_t found = FindLast(TextOf(name), hash);
  if (found == none) {
    Append(name, std::move(event));
    return nullptr;
  }
  Unlink(found);
  Link(found);
  entries[found].pass = pass;
  return std::exchange(entries[found].event, std::move(event));
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

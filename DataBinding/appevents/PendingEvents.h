/// The queue of an event broadcaster: entries in order of arrival, with an index by name.
///
/// Replacing the newest entry of a name puts the new event into that entry and links the entry to
/// the end of the order, so that nothing moves and nothing is scanned. Index and links are made
/// only when a name is first sought, and only over what came since: plain appending does not pay
/// for them. The owner's lock guards all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/EventBroadcaster.h"
#include "DataBinding/EventName.h"

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
  /// Takes out the newest event of a name, or null.
  [[nodiscard]] EventPtr RemoveLast(const VtrString& name, std::uint64_t hash);
  [[nodiscard]] bool IsEmpty() const noexcept { return events == 0; }
  /// Exchanges all entries for an empty batch, whose memory is used on.
  void Take(Batch& batch) noexcept;
  /// Moves the events that match to `dropped`.
  template <class Matches>
  void Drop(Matches matches, std::vector<EventPtr>& dropped);

 private:
  static constexpr std::uint32_t none = UINT32_MAX;

  void IndexRest();
  void GrowIndex();
  void ClearIndex() noexcept;
  void CloseHoles();
  void Link(std::uint32_t entry) noexcept;
  void Unlink(std::uint32_t entry) noexcept;
  [[nodiscard]] std::uint32_t& Slot(const VtrString& name, std::uint64_t hash);
  [[nodiscard]] std::uint32_t FindLast(const VtrString& name, std::uint64_t hash);

  static const VtrString& TextOf(const VtrString& name) noexcept { return name; }
  static const VtrString& TextOf(const EventName& name) noexcept { return name.Text(); }

  std::vector<Entry> entries;
  std::size_t events = 0;
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
};

class PendingEvents::Entry {
 public:
  Entry(VtrString name, EventPtr&& queued) noexcept
      : event(std::move(queued)), ownName(std::move(name)) {}
  Entry(const EventName& name, EventPtr&& queued) noexcept
      : event(std::move(queued)), permanentName(&name.Text()) {}

  [[nodiscard]] const VtrString& Name() const noexcept {
    return permanentName == nullptr ? ownName : *permanentName;
  }
  /// Looks at the texts only where it must: they lie elsewhere.
  [[nodiscard]] bool IsNamed(const VtrString& name) const noexcept {
    return permanentName == &name || Name() == name;
  }

  EventPtr event;  // null once it was taken out

 private:
  friend class PendingEvents;
  friend class Batch;

  VtrString ownName;
  const VtrString* permanentName = nullptr;  // one that is never destroyed needs no counting
  std::uint32_t hash = 0;
  std::uint32_t older = none;  // the entry of the same name before this one
  std::uint32_t previous = none;
  std::uint32_t next = none;
};

/// What is dispatched at one time.
class PendingEvents::Batch {
 public:
  /// Calls visit(event) for each in order, until it answers false.
  template <class Visitor>
  void Visit(Visitor visit) const {
    for (std::uint32_t at = first; at != none; at = entries[at].next) {
      if (entries[at].event != nullptr && !visit(entries[at].event)) return;
    }
    for (std::size_t at = linked; at < entries.size(); ++at) {
      if (entries[at].event != nullptr && !visit(entries[at].event)) return;
    }
  }
  void Clear() noexcept { entries.clear(); }
  /// Moves the events that match, but for the current one, to `dropped`.
  template <class Matches>
  void Drop(const EventPtr& current, Matches matches, std::vector<EventPtr>& dropped) {
    for (Entry& entry : entries) {
      if (entry.event == nullptr || entry.event == current || !matches(entry)) continue;
      dropped.push_back(nullptr);
      dropped.back().swap(entry.event);
    }
  }

 private:
  friend class PendingEvents;

  std::vector<Entry> entries;
  std::uint32_t first = none;
  std::size_t linked = 0;
};

template <class Name>
void PendingEvents::Append(const Name& name, EventPtr&& event) {
  entries.emplace_back(name, std::move(event));
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
  return std::exchange(entries[found].event, std::move(event));
}

template <class Matches>
void PendingEvents::Drop(Matches matches, std::vector<EventPtr>& dropped) {
  for (Entry& entry : entries) {
    if (entry.event == nullptr || !matches(entry)) continue;
    dropped.push_back(nullptr);
    dropped.back().swap(entry.event);
    --events;
  }
  CloseHoles();
}

}  // namespace DataBinding::details

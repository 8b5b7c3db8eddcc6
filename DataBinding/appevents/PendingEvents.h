/// The queue of an event broadcaster: entries in order of arrival, with an index by name.
///
/// Replacing the newest entry of a name leaves a hole where it stood and appends the new one, so
/// that nothing moves; holes are closed once they make up half of the queue. The index is built
/// only when a name is first sought, and only over what came since, so that plain appending does
/// not pay for it. The owner's lock guards all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/EventBroadcaster.h"
#include "DataBinding/EventName.h"

namespace DataBinding::details {

class PendingEvents {
 public:
  using EventPtr = std::shared_ptr<PendingEventBase>;
  struct Entry {
    Entry(VtrString name, EventPtr&& queued) noexcept
        : ownName(std::move(name)), event(std::move(queued)) {}
    Entry(const EventName& name, EventPtr&& queued) noexcept
        : permanentName(&name.Text()), event(std::move(queued)), hash(name.Hash()) {}

    VtrString ownName;
    const VtrString* permanentName = nullptr;  // one that is never destroyed needs no counting
    EventPtr event;                            // null for a hole
    std::uint64_t hash = 0;
    std::uint32_t older = none;  // the entry of the same name before this one

    [[nodiscard]] const VtrString& Name() const noexcept {
      return permanentName == nullptr ? ownName : *permanentName;
    }
    /// Looks at the texts only where it must: they lie elsewhere.
    [[nodiscard]] bool IsNamed(const VtrString& name) const noexcept {
      return permanentName == &name || Name() == name;
    }
  };
  using Batch = std::vector<Entry>;

  [[nodiscard]] static std::uint64_t Hash(const VtrString& name) noexcept {
    return std::hash<VtrString>()(name);
  }
  [[nodiscard]] static std::uint64_t Hash(const EventName& name) noexcept { return name.Hash(); }

  /// Makes room, so that the next Append cannot fail.
  void Reserve();
  template <class Name>
  void Append(const Name& name, EventPtr&& event) {
    entries.emplace_back(name, std::move(event));
  }
  /// Takes out the newest event of a name, or null.
  [[nodiscard]] EventPtr RemoveLast(const VtrString& name, std::uint64_t hash);
  [[nodiscard]] EventPtr RemoveLast(const EventName& name, std::uint64_t hash) {
    return RemoveLast(name.Text(), hash);
  }
  [[nodiscard]] bool IsEmpty() const noexcept { return entries.size() == holes; }
  /// An emptied batch, kept for its memory. The delivering thread's, not guarded by the lock.
  Batch spare;

  /// Exchanges all entries for an empty batch, whose memory is used on.
  void Take(Batch& batch) noexcept;
  /// Moves the events that match to `dropped`.
  template <class Matches>
  void Drop(Matches matches, std::vector<EventPtr>& dropped) {
    for (Entry& entry : entries) {
      if (entry.event == nullptr || !matches(entry)) continue;
      dropped.push_back(std::move(entry.event));
      entry.event = nullptr;
      ++holes;
    }
  }

 private:
  static constexpr std::uint32_t none = UINT32_MAX;

  void IndexRest();
  void GrowIndex();
  void ClearIndex() noexcept;
  void CloseHoles() noexcept;
  [[nodiscard]] std::uint32_t& Slot(const VtrString& name, std::uint64_t hash);

  Batch entries;
  std::size_t holes = 0;
  /// Open addressing: the newest entry of each name indexed so far, found by the name's hash.
  std::vector<std::uint32_t> newest;
  std::size_t names = 0;
  std::size_t indexed = 0;
};

}  // namespace DataBinding::details

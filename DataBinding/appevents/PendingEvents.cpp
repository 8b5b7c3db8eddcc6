#include "PendingEvents.h"

#include <algorithm>
#include <stdexcept>

namespace DataBinding::details {

namespace {
constexpr std::size_t smallestIndex = 64;
}

PendingEvents::EventPtr PendingEvents::RemoveLast(const VtrString& name, std::uint64_t hash) {
  const std::uint32_t found = FindLast(name, hash);
  if (found == none) return nullptr;
  EventPtr removed = std::exchange(entries[found].event, nullptr);
  --events;
  if (events < entries.size() / 2) CloseHoles();
  return removed;
}

void PendingEvents::Take(Batch& batch) noexcept {
  entries.swap(batch.entries);
  batch.first = std::exchange(first, none);
  batch.linked = indexed;
  last = none;
  events = 0;
  ClearIndex();
}

/// Keeps the entries that still have their events, in their order.
void PendingEvents::CloseHoles() {
  std::vector<Entry> kept;
  kept.reserve(events);
  const auto keep = [&](std::size_t at) {
    if (entries[at].event != nullptr) kept.push_back(std::move(entries[at]));
  };
  for (std::uint32_t at = first; at != none; at = entries[at].next) keep(at);
  for (std::size_t at = indexed; at < entries.size(); ++at) keep(at);
  entries.swap(kept);
  first = none;
  last = none;
  ClearIndex();
}

/// The newest entry of a name that still has its event, or none.
std::uint32_t PendingEvents::FindLast(const VtrString& name, std::uint64_t hash) {
  IndexRest();
  std::uint32_t found = newest.empty() ? none : Slot(name, hash);
  while (found != none && entries[found].event == nullptr) found = entries[found].older;
  return found;
}

/// Enters what was appended since the index was last used.
void PendingEvents::IndexRest() {
  if (entries.size() >= none) throw std::length_error("vector too long");
  for (; indexed < entries.size(); ++indexed) {
    if ((names + 1) * 2 > newest.size()) GrowIndex();
    Entry& entry = entries[indexed];
    const std::uint64_t hash = Hash(entry.Name());
    entry.hash = static_cast<std::uint32_t>(hash);
    std::uint32_t& place = Slot(entry.Name(), hash);
    if (place == none) ++names;
    entry.older = std::exchange(place, static_cast<std::uint32_t>(indexed));
    Link(place);
  }
}

std::uint32_t& PendingEvents::Slot(const VtrString& name, std::uint64_t hash) {
  const auto shortHash = static_cast<std::uint32_t>(hash);
  const std::size_t mask = newest.size() - 1;
  for (std::size_t at = shortHash & mask;; at = (at + 1) & mask) {
    if (newest[at] == none) return newest[at];
    const Entry& entry = entries[newest[at]];
    if (entry.hash == shortHash && entry.IsNamed(name)) return newest[at];
  }
}

void PendingEvents::GrowIndex() {
  std::vector<std::uint32_t> grown(std::max(smallestIndex, newest.size() * 2), none);
  newest.swap(grown);
  for (const std::uint32_t entry : grown) {
    if (entry != none) Slot(entries[entry].Name(), entries[entry].hash) = entry;
  }
}

void PendingEvents::ClearIndex() noexcept {
  if (indexed == 0) return;
  // A table that was grown for a rare burst would make every later batch pay.
  if (newest.size() > smallestIndex && newest.size() > names * 16) {
    newest = {};
  } else {
    std::ranges::fill(newest, none);
  }
  names = 0;
  indexed = 0;
}

void PendingEvents::Link(std::uint32_t entry) noexcept {
  entries[entry].previous = last;
  entries[entry].next = none;
  (last == none ? first : entries[last].next) = entry;
  last = entry;
}

void PendingEvents::Unlink(std::uint32_t entry) noexcept {
  const auto [previous, next] = std::pair(entries[entry].previous, entries[entry].next);
  (previous == none ? first : entries[previous].next) = next;
  (next == none ? last : entries[next].previous) = previous;
}

}  // namespace DataBinding::details

#include "PendingEvents.h"

#include <algorithm>
#include <stdexcept>

namespace DataBinding::details {

namespace {
constexpr std::size_t fewest = 32;
}

void PendingEvents::Reserve() {
  if (entries.size() >= none) throw std::length_error("vector too long");
  if (entries.size() < entries.capacity()) return;
  entries.reserve(std::max(fewest, entries.size() + entries.size() / 2));
}

PendingEvents::EventPtr PendingEvents::RemoveLast(const VtrString& name, std::uint64_t hash) {
  IndexRest();
  if (newest.empty()) return nullptr;
  std::uint32_t& place = Slot(name, hash);
  if (place == none) return nullptr;
  std::uint32_t found = place;
  while (found != none && entries[found].event == nullptr) found = entries[found].older;
  if (found == none) return nullptr;
  EventPtr removed = std::move(entries[found].event);
  entries[found].event = nullptr;
  if (++holes > fewest && holes > entries.size() / 2) CloseHoles();
  return removed;
}

void PendingEvents::Take(Batch& batch) noexcept {
  holes = 0;
  ClearIndex();
  entries.swap(batch);
}

/// Enters what was appended since the index was last used.
void PendingEvents::IndexRest() {
  for (; indexed < entries.size(); ++indexed) {
    if ((names + 1) * 2 > newest.size()) GrowIndex();
    Entry& entry = entries[indexed];
    if (entry.hash == 0) entry.hash = Hash(entry.Name());
    std::uint32_t& place = Slot(entry.Name(), entry.hash);
    if (place == none) ++names;
    entry.older = std::exchange(place, static_cast<std::uint32_t>(indexed));
  }
}

std::uint32_t& PendingEvents::Slot(const VtrString& name, std::uint64_t hash) {
  const std::size_t mask = newest.size() - 1;
  for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
    if (newest[at] == none) return newest[at];
    const Entry& entry = entries[newest[at]];
    if (entry.hash == hash && entry.IsNamed(name)) return newest[at];
  }
}

void PendingEvents::GrowIndex() {
  std::vector<std::uint32_t> grown(std::max(fewest * 2, newest.size() * 2), none);
  newest.swap(grown);
  for (const std::uint32_t entry : grown) {
    if (entry != none) Slot(entries[entry].Name(), entries[entry].hash) = entry;
  }
}

void PendingEvents::ClearIndex() noexcept {
  if (indexed == 0) return;
  // A table that was grown for a rare burst would make every later batch pay.
  if (newest.size() > fewest * 2 && newest.size() > names * 16) {
    newest = {};
  } else {
    std::ranges::fill(newest, none);
  }
  names = 0;
  indexed = 0;
}

void PendingEvents::CloseHoles() noexcept {
  std::erase_if(entries, [](const Entry& entry) { return entry.event == nullptr; });
  holes = 0;
  ClearIndex();
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
// This file holds how events are taken out of the queue, singly or as a batch; how the holes that
// this leaves are closed; and the index by which Replace finds the newest event of a name.
#include "PendingEvents.h"

#include <algorithm>
#include <stdexcept>

namespace DataBinding::details {

namespace {
constexpr std::size_t smallestIndex = 64;
}

PendingEvents::EventPtr PendingEvents::TakeFirst(std::uint32_t ofPass) noexcept {
  const std::size_t oldest = first == none ? indexed : first;
  if (oldest >= entries.size() || !entries[oldest].IsBefore(ofPass)) return nullptr;
  if (first == none) {
    ++indexed;
  } else {
    Unlink(first);
  }
  EventPtr taken = std::exchange(entries[oldest].event, nullptr);
  if (--events == 0) {
    entries.clear();
    ClearIndex();
  }
  return taken;
}

void PendingEvents::Take(Batch& batch) noexcept {
  batch.Fill(entries, first, indexed);
  first = last = none;
  events = 0;
  ClearIndex();
}

bool PendingEvents::Batch::HasNext() const noexcept {
  for (std::uint32_t at = first; at != none; at = entries[at].next) {
    if (entries[at].event != nullptr) return true;
  }
  const auto isThere = [](const Entry& entry) { return entry.event != nullptr; };
  return std::any_of(rest, end, isThere);
}

/// Is called when the memory is full. Where more than half of the entries are empty, it closes
/// these holes, so that the memory need not grow.
void PendingEvents::MakeRoom() {
  if (events < entries.size() / 2) CloseHoles(Room());
}

/// Memory of the capacity that the queue has now.
std::vector<PendingEvents::Entry> PendingEvents::Room() const {
  std::vector<Entry> room;
  room.reserve(entries.capacity());
  return room;
}

/// Moves the entries that have events to the given memory, in their order. The memory is reserved
/// by the caller, because this must not throw half-way.
void PendingEvents::CloseHoles(std::vector<Entry> room) noexcept {
  Batch whole;
  Take(whole);
  while (Entry* entry = whole.Next()) room.push_back(std::move(*entry));
  entries.swap(room);
  events = entries.size();
}

/// Finds the newest entry of a name that still has its event, or `none`.
std::uint32_t PendingEvents::FindLast(const VtrString& name, std::uint64_t hash) {
  IndexRest();
  const std::uint32_t found = newest.empty() ? none : Slot(name, hash);
  return found == none || entries[found].event == nullptr ? none : found;
}

PendingEvents::EventPtr PendingEvents::Replace(const VtrString& name, std::uint64_t hash,
                                               EventPtr&& event) {
  const std::uint32_t found = FindLast(name, hash);
  if (found == none) {
    Append(name, std::move(event));
    return nullptr;
  }
  Unlink(found);
  Link(found);
  entries[found].pass = pass;
  return std::exchange(entries[found].event, std::move(event));
}

/// Enters the entries that were appended since the index was last used.
void PendingEvents::IndexRest() {
  if (entries.size() >= none) throw std::length_error("vector too long");
  for (; indexed < entries.size(); ++indexed) {
    if ((names + 1) * 2 > newest.size()) GrowIndex();
    Entry& entry = entries[indexed];
    const std::uint64_t hash = Hash(entry.name, *entry.event);
    entry.hash = static_cast<std::uint32_t>(hash);
    std::uint32_t& place = Slot(entry.name, hash);
    if (place == none) ++names;
    place = static_cast<std::uint32_t>(indexed);
    Link(place);
  }
}

std::uint32_t& PendingEvents::Slot(const VtrString& name, std::uint64_t hash) {
  const auto shortHash = static_cast<std::uint32_t>(hash);
  const std::size_t mask = newest.size() - 1;
  for (std::size_t at = shortHash & mask;; at = (at + 1) & mask) {
    if (newest[at] == none) return newest[at];
    const Entry& entry = entries[newest[at]];
    if (entry.hash == shortHash && entry.name == name) return newest[at];
  }
}

void PendingEvents::GrowIndex() {
  std::vector<std::uint32_t> grown(std::max(smallestIndex, newest.size() * 2), none);
  newest.swap(grown);
  for (const std::uint32_t entry : grown) {
    if (entry != none) Slot(entries[entry].name, entries[entry].hash) = entry;
  }
}

void PendingEvents::ClearIndex() noexcept {
  if (indexed == 0) return;
  // A table that has grown for a rare burst is freed, or clearing it would cost every later batch.
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

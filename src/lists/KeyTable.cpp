// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/KeyTable.h"

#include <algorithm>
#include <utility>

namespace DataBinding::details {

namespace {

constexpr std::uint8_t isFree = 0;
constexpr std::uint8_t wasLeft = 1;

/// Spreads a hash over all bits, since std::hash of a number is often the number itself.
std::uint64_t Mix(std::size_t hash) noexcept {
  std::uint64_t mixed = std::uint64_t{hash} * 0x9E3779B97F4A7C15U;
  mixed ^= mixed >> 32;
  return mixed * 0xD6E8FEB86659FD93U;
}

std::uint64_t HashOf(const RowTable& table, const void* key) noexcept {
  return Mix(table.hashOfKey(key));
}

std::uint8_t TagOf(std::uint64_t hash) noexcept {
  return static_cast<std::uint8_t>((hash & 0xff) < 2 ? (hash & 0xff) + 2 : hash & 0xff);
}

}  // namespace

const void* RowReader::ComingRow(RowId id) const noexcept {
  const void* const row = id < coming->size() ? (*coming)[id] : nullptr;
  return row == nullptr ? storage->Row(id) : row;
}

/// Goes over the slots where a hash may stand.
struct KeyTable::Probe {
  Probe(const KeyTable& probed, std::uint64_t hash) noexcept
      : tags(probed.tags), at(static_cast<std::size_t>((hash >> 32) * tags.size() >> 32)) {}
  void Next() noexcept {
    if (++at == tags.size()) at = 0;
  }
  [[nodiscard]] std::uint8_t Tag() const noexcept { return tags[at]; }

  const std::vector<std::uint8_t>& tags;
  std::size_t at;
};

void KeyTable::Reserve(std::size_t insertions, RowId idsBelow, const RowReader& rows) {
  if (!links.empty()) AllowDoubles(idsBelow);
  if ((used + insertions) * 8 <= tags.size() * 7) return;
  Rebuild(keys + insertions, rows);
}

/// Makes the table anew with a quarter of free slots, so that rebuilding is rare.
void KeyTable::Rebuild(std::size_t rows, const RowReader& reader) {
  const std::size_t size = rows * 10 / 7 + 8;
  KeyTable made;
  made.tags.resize(size);
  made.ids.resize(size);
  const RowTable& table = reader.storage->Table();
  for (std::size_t slot = 0; slot < tags.size(); ++slot) {
    if (tags[slot] <= wasLeft) continue;
    made.Place(ids[slot], HashOf(table, table.key(reader.Row(ids[slot]))));
  }
  tags.swap(made.tags);
  ids.swap(made.ids);
  used = keys;
}

void KeyTable::AllowDoubles(RowId idsBelow) {
  if (links.size() < idsBelow) links.resize(idsBelow + idsBelow / 2);
}

/// Puts an id whose key is not in the table into a slot that no id has ever used.
void KeyTable::Place(RowId id, std::uint64_t hash) noexcept {
  Probe probe(*this, hash);
  while (probe.Tag() != isFree) probe.Next();
  tags[probe.at] = TagOf(hash);
  ids[probe.at] = id;
}

bool KeyTable::Insert(RowId id, const RowReader& rows) noexcept {
  const RowTable& table = rows.storage->Table();
  const void* const key = table.key(rows.Row(id));
  const std::uint64_t hash = HashOf(table, key);
  std::size_t place = tags.size();
  Probe probe(*this, hash);
  for (; probe.Tag() != isFree; probe.Next()) {
    if (probe.Tag() == wasLeft && place == tags.size()) place = probe.at;
    if (probe.Tag() != TagOf(hash)) continue;
    if (table.areKeysEqual(table.key(rows.Row(ids[probe.at])), key)) {
      if (!links.empty()) LinkBehind(ids[probe.at], id);
      return false;
    }
  }
  if (place == tags.size()) {
    place = probe.at;
    ++used;
  }
  tags[place] = TagOf(hash);
  ids[place] = id;
  ++keys;
  return true;
}

void KeyTable::LinkBehind(RowId first, RowId id) noexcept {
  const RowId second = links[first].next;
  links[id] = {first, second};
  links[first].next = id;
  if (second != none) links[second].previous = id;
  ++doubles;
}

void KeyTable::Erase(RowId id, const RowReader& rows) noexcept {
  const Link link = id < links.size() ? std::exchange(links[id], Link()) : Link();
  if (link.next != none) links[link.next].previous = link.previous;
  if (link.previous != none) links[link.previous].next = link.next;
  if (link.next != none || link.previous != none) --doubles;
  if (link.previous != none) return;
  const RowTable& table = rows.storage->Table();
  Probe probe(*this, HashOf(table, table.key(rows.Row(id))));
  while (probe.Tag() <= wasLeft || ids[probe.at] != id) probe.Next();
  if (link.next != none) {
    ids[probe.at] = link.next;
  } else {
    Vacate(probe.at);
  }
}

/// Frees a slot at once where no probe goes on behind it, and then those before it that were left.
void KeyTable::Vacate(std::size_t slot) noexcept {
  --keys;
  tags[slot] = wasLeft;
  if (tags[slot + 1 == tags.size() ? 0 : slot + 1] != isFree) return;
  while (tags[slot] == wasLeft) {
    tags[slot] = isFree;
    --used;
    slot = (slot == 0 ? tags.size() : slot) - 1;
  }
}

RowId KeyTable::Find(const void* key, const RowReader& rows) const noexcept {
  if (keys == 0) return none;
  const RowTable& table = rows.storage->Table();
  const std::uint64_t hash = HashOf(table, key);
  for (Probe probe(*this, hash); probe.Tag() != isFree; probe.Next()) {
    if (probe.Tag() != TagOf(hash)) continue;
    if (table.areKeysEqual(table.key(rows.Row(ids[probe.at])), key)) return ids[probe.at];
  }
  return none;
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
// This file holds the table of properties: looking up, inserting, growing and taking out.
#include "PropertyTable.h"

#include <cstring>
#include <utility>

namespace DataBinding::details {

namespace {

/// Keys of both kinds are told apart by their lowest bit, which does not count as hash.
constexpr std::uint32_t ofAllCharacters = 1;

constexpr std::uint32_t Fold(std::uint64_t hash) noexcept {
  return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

std::uint32_t SampledKey(const VtrString& name) noexcept {
  return Fold(name.GetSamplingHash()) & ~ofAllCharacters;
}

/// Hashes sixteen bytes at a time in two independent lanes, for it is computed at each search.
std::uint32_t FullKey(const VtrString& name) noexcept {
  constexpr std::uint64_t factors[] = {0x9e3779b97f4a7c15, 0xc2b2ae3d27d4eb4f};
  const std::wstring_view text = name;
  const auto* next = reinterpret_cast<const char*>(text.data());
  std::size_t left = text.size() * sizeof(wchar_t);
  std::uint64_t lanes[] = {left, 0};
  while (left != 0) {
    std::uint64_t words[] = {0, 0};
    const std::size_t read = left < sizeof(words) ? left : sizeof(words);
    if (read == sizeof(words)) {  // a copy of a known length is two instructions
      std::memcpy(words, next, sizeof(words));
    } else {
      std::memcpy(words, next, read);
    }
    for (int lane = 0; lane < 2; ++lane) lanes[lane] = (lanes[lane] ^ words[lane]) * factors[lane];
    next += read;
    left -= read;
  }
  const std::uint64_t mixed = (lanes[0] ^ (lanes[0] >> 29)) + (lanes[1] ^ (lanes[1] >> 32));
  return Fold(mixed * factors[0]) | ofAllCharacters;
}

}  // namespace

/// Returns the first slot with this key, or the empty slot at which the search ends.
PropertyTable::Slot& PropertyTable::SlotOf(std::uint32_t key) const noexcept {
  std::size_t i = Home(key);
  while (!slots[i].IsEmpty() && slots[i].key != key) i = (i + 1) & (capacity - 1);
  return slots[i];
}

/// Returns the slot of the name under this key, or the crowd of the key, or an empty slot.
PropertyTable::Slot& PropertyTable::SlotOf(std::uint32_t key,
                                           const VtrString& name) const noexcept {
  for (std::size_t i = Home(key);; i = (i + 1) & (capacity - 1)) {
    Slot& slot = slots[i];
    if (slot.entry == nullptr) {
      if (slot.crowd == 0 || slot.key == key) return slot;
    } else if (slot.key == key && slot.entry->Name() == name) {
      return slot;
    }
  }
}

PropertyEntry* PropertyTable::Find(const VtrString& name) const noexcept {
  const Slot& slot = SlotOf(SampledKey(name));
  if (slot.entry != nullptr) return slot.entry->Name() == name ? slot.entry : nullptr;
  return slot.crowd == 0 ? nullptr : SlotOf(FullKey(name), name).entry;
}

PropertyEntry& PropertyTable::Insert(const VtrString& name) {
  const auto key = SampledKey(name);
  const bool becomesCrowd = SlotOf(key).entry != nullptr;
  Reserve(becomesCrowd ? 2 : 1);
  ListenerArrayPtr array(ListenerArray::Make(name, 1));
  PropertyEntry& entry = TakeUnused();
  entry.array = std::move(array);
  Slot& slot = SlotOf(key);
  if (becomesCrowd) {
    PropertyEntry* const former = std::exchange(slot.entry, nullptr);
    slot.crowd = 1;
    Enter({FullKey(former->Name()), 0, former});
  }
  if (slot.IsEmpty()) {
    Enter({key, 0, &entry});
  } else {
    ++slot.crowd;
    Enter({FullKey(name), 0, &entry});
  }
  ++size;
  return entry;
}

PropertyEntry& PropertyTable::TakeUnused() {
  if (unused == nullptr) return *new PropertyEntry;
  return *std::exchange(unused, unused->nextUnused);
}

/// Makes sure that so many more slots may be used. A quarter of the slots stays empty, and one at
/// least, at which a search ends.
void PropertyTable::Reserve(std::size_t more) {
  if (usedSlots + more <= capacity / 2 + capacity / 4) return;
  const std::size_t former = capacity;
  Slot* const larger = new Slot[capacity * 2];
  Slot* const smaller = std::exchange(slots, larger);
  capacity *= 2;
  usedSlots = 0;
  for (std::size_t i = 0; i < former; ++i) {
    if (!smaller[i].IsEmpty()) Enter(smaller[i]);
  }
  if (smaller != firstSlots) delete[] smaller;
}

void PropertyTable::Enter(const Slot& filled) noexcept {
  std::size_t i = Home(filled.key);
  while (!slots[i].IsEmpty()) i = (i + 1) & (capacity - 1);
  slots[i] = filled;
  ++usedSlots;
}

ListenerArrayPtr PropertyTable::Extract(PropertyEntry& entry) noexcept {
  const VtrString& name = entry.Name();
  Slot& slot = SlotOf(SampledKey(name), name);
  if (slot.crowd == 0) {
    Vacate(slot);
  } else {
    Vacate(SlotOf(FullKey(name), name));
    Slot& crowd = SlotOf(SampledKey(name));  // it may have moved
    if (--crowd.crowd == 0) Vacate(crowd);
  }
  --size;
  entry.nextUnused = std::exchange(unused, &entry);
  return std::move(entry.array);
}

/// Empties a slot. A probe stops at an empty slot, so the slots behind it that belong further up
/// are moved into the gap.
void PropertyTable::Vacate(Slot& slot) noexcept {
  auto gap = static_cast<std::size_t>(&slot - slots);
  for (std::size_t i = (gap + 1) & (capacity - 1); !slots[i].IsEmpty();
       i = (i + 1) & (capacity - 1)) {
    const std::size_t fromHome = (i - Home(slots[i].key)) & (capacity - 1);
    const std::size_t fromGap = (i - gap) & (capacity - 1);
    if (fromHome < fromGap) continue;
    slots[gap] = slots[i];
    gap = i;
  }
  slots[gap] = Slot();
  --usedSlots;
}

void PropertyTable::Clear() noexcept {
  const auto free = [this](PropertyEntry* entry) {
    if (entry != &firstEntry) delete entry;
  };
  ForEach([&](PropertyEntry& entry) { free(&entry); });
  while (unused != nullptr) free(std::exchange(unused, unused->nextUnused));
  if (slots != firstSlots) delete[] slots;
  slots = firstSlots;
  for (Slot& slot : firstSlots) slot = Slot();
  capacity = firstCapacity;
  usedSlots = size = 0;
}

}  // namespace DataBinding::details

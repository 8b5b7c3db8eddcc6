// SPDX-License-Identifier: Apache-2.0
// This file holds the table of properties: looking up, inserting, growing and taking out.
#include "PropertyTable.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace DataBinding::details {

namespace {
std::size_t FullHash(const VtrString& name) noexcept { return std::hash<VtrString>()(name); }
}  // namespace

PropertyTable::PropertyTable(PropertyTable&& other) noexcept
    : slots(std::move(other.slots)),
      capacity(std::exchange(other.capacity, 0)),
      usedSlots(std::exchange(other.usedSlots, 0)),
      size(std::exchange(other.size, 0)) {}

PropertyTable::~PropertyTable() {
  ForEach([](PropertyEntry& entry) { delete &entry; });
}

PropertyTable::Slot& PropertyTable::Probe(std::uint64_t hash) const noexcept {
  std::size_t i = Home(hash);
  while (slots[i].first != nullptr && slots[i].hash != hash) i = (i + 1) & (capacity - 1);
  return slots[i];
}

PropertyEntry* PropertyTable::Find(const VtrString& name) const noexcept {
  if (size == 0) return nullptr;
  const Slot& slot = Probe(name.GetSamplingHash());
  if (slot.first == nullptr || slot.first->Name() == name) return slot.first;
  if (slot.alike == nullptr) return nullptr;
  // A loop instead of equal_range, which would read one node more.
  const auto hash = FullHash(name);
  for (auto node = slot.alike->find(hash); node != slot.alike->end(); ++node) {
    if (node->first != hash) break;
    if (node->second->Name() == name) return node->second;
  }
  return nullptr;
}

PropertyEntry& PropertyTable::Insert(const VtrString& name) {
  Reserve();
  const auto hash = name.GetSamplingHash();
  std::unique_ptr<PropertyEntry> entry(
      new PropertyEntry{ListenerArrayPtr(ListenerArray::Make(name, 1))});
  Slot& slot = Probe(hash);
  if (slot.first == nullptr) {
    slot.hash = hash;
    slot.first = entry.get();
    ++usedSlots;
  } else {
    auto first = slot.alike == nullptr ? std::make_unique<Alike>() : nullptr;
    (first != nullptr ? *first : *slot.alike).emplace(FullHash(name), entry.get());
    if (first != nullptr) slot.alike = std::move(first);
  }
  ++size;
  return *entry.release();
}

void PropertyTable::Reserve() {
  if (usedSlots + 1 <= capacity / 2 + capacity / 4) return;
  const std::size_t wanted = capacity == 0 ? firstCapacity : capacity * 2;
  PropertyTable larger;
  larger.slots = std::make_unique<Slot[]>(wanted);
  larger.capacity = wanted;
  for (std::size_t i = 0; i < capacity; ++i) {
    if (slots[i].first != nullptr) larger.Probe(slots[i].hash) = std::move(slots[i]);
  }
  slots = std::move(larger.slots);
  capacity = std::exchange(larger.capacity, 0);
}

ListenerArrayPtr PropertyTable::Extract(PropertyEntry& entry) noexcept {
  RemoveFromSlot(Probe(entry.Name().GetSamplingHash()), entry);
  --size;
  const std::unique_ptr<PropertyEntry> ended(&entry);
  return std::move(entry.array);
}

void PropertyTable::RemoveFromSlot(Slot& slot, PropertyEntry& entry) noexcept {
  if (slot.alike == nullptr) return Vacate(slot);
  if (slot.first == &entry) {
    const auto next = slot.alike->begin();
    slot.first = next->second;
    slot.alike->erase(next);
  } else {
    const auto [first, last] = slot.alike->equal_range(FullHash(entry.Name()));
    slot.alike->erase(
        std::find_if(first, last, [&entry](const auto& node) { return node.second == &entry; }));
  }
  if (slot.alike->empty()) slot.alike.reset();
}

/// Empties a slot. A probe stops at an empty slot, so the slots behind it that belong further up
/// are moved into the gap.
void PropertyTable::Vacate(Slot& slot) noexcept {
  auto gap = static_cast<std::size_t>(&slot - slots.get());
  for (std::size_t i = (gap + 1) & (capacity - 1); slots[i].first != nullptr;
       i = (i + 1) & (capacity - 1)) {
    const std::size_t fromHome = (i - Home(slots[i].hash)) & (capacity - 1);
    const std::size_t fromGap = (i - gap) & (capacity - 1);
    if (fromHome < fromGap) continue;
    slots[gap] = std::move(slots[i]);
    gap = i;
  }
  slots[gap] = Slot();
  --usedSlots;
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// Property names and their listener arrays: an open-addressing table keyed by the sampling hash,
/// with linear probing and backward-shift deletion (Knuth, TAOCP 3, 6.4, algorithm R).
///
/// Names that sample alike share one slot: the first stands in the slot itself, further ones in a
/// map by their full-length hash, so that they slow nobody down. Entries do not move while they are
/// in the table. No threads of its own: the registry's lock guards it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/StringView.h"
#include "ListenerArray.h"

namespace DataBinding::details {

struct ListenerArrayDeleter {
  void operator()(ListenerArray* array) const { ListenerArray::Destroy(array); }
};
using ListenerArrayPtr = std::unique_ptr<ListenerArray, ListenerArrayDeleter>;

/// One property that somebody is registered for.
struct PropertyEntry {
  ListenerArrayPtr array;

  [[nodiscard]] const VtrString& Name() const noexcept { return array->Property(); }
};

class PropertyTable {
 public:
  PropertyTable() noexcept = default;
  PropertyTable(PropertyTable&& other) noexcept;
  PropertyTable& operator=(PropertyTable&&) = delete;
  ~PropertyTable();

  [[nodiscard]] PropertyEntry* Find(const VtrString& name) const noexcept;
  /// Adds a name that is not there yet, with an empty array for one listener.
  PropertyEntry& Insert(const VtrString& name);
  /// Takes an entry out.
  std::unique_ptr<PropertyEntry> Extract(PropertyEntry& entry) noexcept;
  [[nodiscard]] std::size_t Size() const noexcept { return size; }

  template <class Visit>
  void ForEach(Visit visit) const {
    for (std::size_t i = 0; i < capacity; ++i) {
      if (slots[i].first == nullptr) continue;
      visit(*slots[i].first);
      if (slots[i].alike == nullptr) continue;
      for (const auto& [hash, entry] : *slots[i].alike) visit(*entry);
    }
  }

 private:
  /// By the full-length hash, which the nodes keep: no neighbour is hashed again.
  using Alike = std::unordered_multimap<std::size_t, PropertyEntry*>;
  struct Slot {
    std::uint64_t hash = 0;
    PropertyEntry* first = nullptr;
    std::unique_ptr<Alike> alike;
  };
  static constexpr std::size_t firstCapacity = 4;

  /// The slot of a hash, or the empty slot where it belongs.
  [[nodiscard]] Slot& Probe(std::uint64_t hash) const noexcept;
  [[nodiscard]] std::size_t Home(std::uint64_t hash) const noexcept {
    return (hash ^ (hash >> 32)) & (capacity - 1);
  }
  void Reserve();
  void Vacate(Slot& slot) noexcept;
  void RemoveFromSlot(Slot& slot, PropertyEntry& entry) noexcept;

  std::unique_ptr<Slot[]> slots;
  std::size_t capacity = 0;
  std::size_t usedSlots = 0;
  std::size_t size = 0;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A PropertyTable finds the listener array of a property by its name. It uses open addressing by
/// the sampling hash, with linear probing and backward-shift deletion (Knuth, TAOCP 3, 6.4,
/// algorithm R).
///
/// The sampling hash reads only ten characters, so different names may have the same one. Such
/// names share one slot: the first stands in the slot itself, the others in a map by the hash of
/// all their characters, so that they do not slow down the search for other names. An entry does
/// not move while it is in the table. The registry's lock guards the table.
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

/// A PropertyEntry is one property for which listeners are registered.
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
  /// Adds a name that is not in the table yet, with an empty array that has room for one listener.
  PropertyEntry& Insert(const VtrString& name);
  /// Takes an entry out of the table, frees it, and gives its array to the caller.
  ListenerArrayPtr Extract(PropertyEntry& entry) noexcept;
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
  /// This map finds entries by the hash of all characters. Its nodes keep the hash, so that a
  /// search does not compute it again for the names that it passes.
  using Alike = std::unordered_multimap<std::size_t, PropertyEntry*>;
  struct Slot {
    std::uint64_t hash = 0;
    PropertyEntry* first = nullptr;
    std::unique_ptr<Alike> alike;
  };
  static constexpr std::size_t firstCapacity = 4;

  /// Returns the slot with this hash, or the empty slot in which it belongs.
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

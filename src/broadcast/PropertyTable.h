// SPDX-License-Identifier: Apache-2.0
/// A PropertyTable finds the listener array of a property by its name. It uses open addressing with
/// linear probing and backward-shift deletion (Knuth, TAOCP 3, 6.4, algorithm R).
///
/// A name is filed under its sampling hash. This reads only ten characters, so different names may
/// have the same one. Then the slot of that hash becomes a crowd, which only counts the names, and
/// the names themselves are filed, in the same table, under the hash of all their characters. So
/// they do not slow down the search for other names, and are themselves found in two steps.
///
/// An entry never moves, and is not freed before the table is cleared: subscriptions lead to it,
/// and it serves the next name when its own has gone. The first name needs neither slots nor an
/// entry of its own. The registry's lock guards the table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "DataBinding/foundation/String.h"
#include "ListenerArray.h"

namespace DataBinding::details {

struct ListenerArrayDeleter {
  void operator()(ListenerArray* array) const { ListenerArray::Destroy(array); }
};
using ListenerArrayPtr = std::unique_ptr<ListenerArray, ListenerArrayDeleter>;

/// A PropertyEntry is one property for which listeners are registered.
struct PropertyEntry {
  /// Is null while the entry serves no name.
  ListenerArrayPtr array;
  PropertyEntry* nextUnused = nullptr;

  [[nodiscard]] const VtrString& Name() const noexcept { return array->Property(); }
};

class PropertyTable {
 public:
  PropertyTable() noexcept = default;
  PropertyTable(const PropertyTable&) = delete;
  PropertyTable& operator=(const PropertyTable&) = delete;
  ~PropertyTable() { Clear(); }

  [[nodiscard]] PropertyEntry* Find(const VtrString& name) const noexcept;
  /// Adds a name that is not in the table yet, with an empty array that has room for one listener.
  PropertyEntry& Insert(const VtrString& name);
  /// Takes an entry out of the table, and gives its array to the caller.
  ListenerArrayPtr Extract(PropertyEntry& entry) noexcept;
  /// Frees all entries, which need not have arrays any more.
  void Clear() noexcept;
  [[nodiscard]] std::size_t Size() const noexcept { return size; }

  template <class Visit>
  void ForEach(Visit visit) const {
    for (std::size_t i = 0; i < capacity; ++i) {
      if (slots[i].entry != nullptr) visit(*slots[i].entry);
    }
  }

 private:
  /// A slot holds an entry, or is a crowd of so many names, or is empty.
  struct Slot {
    std::uint32_t key = 0;
    std::uint32_t crowd = 0;
    PropertyEntry* entry = nullptr;

    [[nodiscard]] bool IsEmpty() const noexcept { return entry == nullptr && crowd == 0; }
  };
  static constexpr std::size_t firstCapacity = 2;

  [[nodiscard]] Slot& SlotOf(std::uint32_t key) const noexcept;
  [[nodiscard]] Slot& SlotOf(std::uint32_t key, const VtrString& name) const noexcept;
  [[nodiscard]] std::size_t Home(std::uint32_t key) const noexcept {
    return (key >> 1) & (capacity - 1);
  }
  void Reserve(std::size_t more);
  void Enter(const Slot& filled) noexcept;
  void Vacate(Slot& slot) noexcept;
  PropertyEntry& TakeUnused();

  Slot firstSlots[firstCapacity];
  Slot* slots = firstSlots;
  std::size_t capacity = firstCapacity;
  std::size_t usedSlots = 0;
  std::size_t size = 0;
  PropertyEntry firstEntry;
  PropertyEntry* unused = &firstEntry;
};

}  // namespace DataBinding::details

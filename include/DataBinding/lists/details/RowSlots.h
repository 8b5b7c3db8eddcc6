// SPDX-License-Identifier: Apache-2.0
/// RowSlots are the storage of a list's rows. A row stands in the same slot as long as it lives, in
/// blocks of 256 slots, and the number of its slot is its id.
///
/// The storage knows which slots hold a row, and ends those rows when it ends. A free slot holds
/// the number of the next one that is free, so that giving a slot back allocates nothing. An object
/// belongs to one thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/lists/details/RowOrder.h"
#include "DataBinding/lists/details/RowTable.h"

namespace DataBinding::details {

class DATABINDING_API RowSlots {
 public:
  explicit RowSlots(const RowTable& itsTable) noexcept;
  RowSlots(const RowSlots&) = delete;
  RowSlots& operator=(const RowSlots&) = delete;
  ~RowSlots() { Clear(0); }

  [[nodiscard]] void* Row(RowId id) const noexcept {
    return blocks[id / slotsInBlock].get() + id % slotsInBlock * stride;
  }
  [[nodiscard]] const RowTable& Table() const noexcept { return *table; }
  /// All ids that were ever given are below this one.
  [[nodiscard]] RowId IdsBelow() const noexcept { return fresh; }

  /// Makes room for so many rows, so that Take does not fail. Strong guarantee.
  void Reserve(std::size_t rows);
  /// Moves a row into a slot.
  RowId Take(void* row) noexcept;
  /// Copies a row into a slot. Where that throws, the slot stays free.
  RowId Copy(const void* row);
  /// Ends a row and frees its slot.
  void Remove(RowId id) noexcept;
  /// Ends all rows, and keeps the memory of so many blocks.
  void Clear(std::size_t keptBlocks) noexcept;

 private:
  static constexpr std::size_t slotsInBlock = 256;
  static constexpr RowId none = ~RowId{0};

  [[nodiscard]] RowId NextFree() const noexcept;
  void Occupy(RowId id) noexcept;

  const RowTable* table;
  std::size_t stride;
  std::vector<std::unique_ptr<std::byte[]>> blocks;
  std::vector<std::array<std::uint64_t, slotsInBlock / 64>> occupied;
  std::size_t freed = 0;  // the slots below `fresh` that are free
  RowId firstFreed = none;
  RowId fresh = 0;
};

}  // namespace DataBinding::details

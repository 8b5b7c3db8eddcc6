// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/RowSlots.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace DataBinding::details {

RowSlots::RowSlots(const RowTable& itsTable) noexcept : table(&itsTable) {
  const std::size_t least = std::max(table->size, sizeof(RowId));
  stride = (least + table->alignment - 1) / table->alignment * table->alignment;
}

void RowSlots::Reserve(std::size_t rows) {
  const std::size_t needed = fresh + (rows > freed ? rows - freed : 0);
  if (needed >= none) throw std::length_error("a list has too many rows");
  const std::size_t wanted = (needed + slotsInBlock - 1) / slotsInBlock;
  if (wanted <= blocks.size()) return;
  const auto room = [&](auto& items) {
    if (items.capacity() < wanted) items.reserve(std::max(wanted, 2 * items.size()));
  };
  room(blocks);
  room(occupied);
  while (blocks.size() < wanted) {
    blocks.emplace_back(new std::byte[stride * slotsInBlock]);
    occupied.push_back({});
  }
}

RowId RowSlots::NextFree() const noexcept { return firstFreed == none ? fresh : firstFreed; }

void RowSlots::Occupy(RowId id) noexcept {
  occupied[id / slotsInBlock][id % slotsInBlock / 64] |= std::uint64_t{1} << id % 64;
}

RowId RowSlots::Take(void* row) noexcept {
  const RowId id = NextFree();
  if (id == fresh) {
    ++fresh;
  } else {
    std::memcpy(&firstFreed, Row(id), sizeof(firstFreed));
    --freed;
  }
  table->move(Row(id), row);
  Occupy(id);
  if (table->placed != nullptr) table->placed(Row(id), id);
  return id;
}

RowId RowSlots::Copy(const void* row) {
  Reserve(1);
  const RowId id = NextFree();
  RowId following = none;
  if (id != fresh) std::memcpy(&following, Row(id), sizeof(following));
  try {
    table->copy(Row(id), row);
  } catch (...) {
    if (id != fresh) std::memcpy(Row(id), &following, sizeof(following));
    throw;
  }
  if (id == fresh) {
    ++fresh;
  } else {
    firstFreed = following;
    --freed;
  }
  Occupy(id);
  return id;
}

void RowSlots::Remove(RowId id) noexcept {
  table->destroy(Row(id));
  occupied[id / slotsInBlock][id % slotsInBlock / 64] &= ~(std::uint64_t{1} << id % 64);
  std::memcpy(Row(id), &firstFreed, sizeof(firstFreed));
  firstFreed = id;
  ++freed;
}

void RowSlots::Clear(std::size_t keptBlocks) noexcept {
  for (RowId id = 0; id < fresh; ++id) {
    auto& bits = occupied[id / slotsInBlock][id % slotsInBlock / 64];
    if ((bits >> id % 64 & 1) != 0) table->destroy(Row(id));
  }
  blocks.resize(std::min(blocks.size(), keptBlocks));
  occupied.resize(blocks.size());
  std::ranges::fill(occupied, decltype(occupied)::value_type{});
  firstFreed = none;
  fresh = 0;
  freed = 0;
}

}  // namespace DataBinding::details

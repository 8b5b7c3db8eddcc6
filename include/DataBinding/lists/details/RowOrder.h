// SPDX-License-Identifier: Apache-2.0
/// A RowOrder is the order in which a list or a view shows its rows. It knows rows by their ids
/// only.
///
/// The ids stand in blocks of at most 256, and for each id the order knows its block. Therefore an
/// id is found by where it stands, and no two rows are ever compared. A change moves ids within one
/// or two blocks, and then goes over one number for each block.
///
/// Memory for a change is reserved beforehand, so that the change itself allocates nothing.
/// Erase joins small neighbours, and a block that is full is shared out evenly among two or more:
/// therefore a row takes 7 bytes after Assign, and about 8 after many changes. An order holds some
/// eight million rows; Reserve and Assign throw std::length_error beyond that.
///
/// Invariants:
/// 1. `sequence`, `starts` have an entry for each block in use, in the order of the rows; no block
///    in use is empty; the place of block b in `sequence` is placeOf[b].
/// 2. The numbers below blocks.size() that are not in use are those in `unused`.
/// 3. There are at least BlocksFor(promised) blocks in `spares`, and as many numbers in `unused`.
///
/// An order belongs to one thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "DataBinding/Export.h"

namespace DataBinding {

/// Identifies a row of a list while the row is in the list, wherever it stands there.
using RowId = std::uint32_t;

namespace details {

class DATABINDING_API RowOrder {
 public:
  /// IndexOf returns this for an id that is not in the order.
  static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

  RowOrder() = default;
  RowOrder(const RowOrder&) = delete;
  RowOrder& operator=(const RowOrder&) = delete;
  ~RowOrder() = default;

  [[nodiscard]] std::size_t Size() const noexcept { return size; }
  /// The id at an index below Size(). O(log n).
  [[nodiscard]] RowId At(std::size_t index) const noexcept {
    const std::size_t place = PlaceOf(index);
    return BlockAt(place).ids[index - starts[place]];
  }
  /// The index of an id, or `nowhere`.
  [[nodiscard]] std::size_t IndexOf(RowId id) const noexcept;
  [[nodiscard]] bool Contains(RowId id) const noexcept {
    return id < blockOf.size() && blockOf[id] != noBlock;
  }

  /// Reserves what so many insertions of ids below `idsBelow` need, in any pieces and with any
  /// erasures between them. The next Reserve or Assign ends what was reserved and is left over.
  /// Strong guarantee.
  void Reserve(std::size_t insertions, RowId idsBelow);
  /// Inserts ids that are not in the order. They were reserved.
  void Insert(std::size_t at, std::span<const RowId> ids) noexcept;
  void Erase(std::size_t at, std::size_t count) noexcept;
  /// Moves `count` rows; the first one stands at `to` afterwards. They were reserved as insertions.
  void Move(std::size_t from, std::size_t count, std::size_t to) noexcept;
  /// Replaces the whole order. Strong guarantee; it allocates nothing after
  /// Reserve(ids.size(), idsBelow).
  void Assign(std::span<const RowId> ids);

  /// Copies the ids from an index on; there are at least as many as `to` has room for.
  void CopyIds(std::size_t at, std::span<RowId> to) const noexcept;
  /// Calls visit(std::span<const RowId>) with the ids, block by block in their order.
  template <class Visit>
  void ForEach(Visit&& visit) const {
    for (const BlockNumber number : sequence) visit(blocks[number]->Ids());
  }

 private:
  using BlockNumber = std::uint16_t;
  static constexpr std::size_t mostInBlock = 256;
  /// New blocks are not filled up, so that the first rows which move do not share all of them out.
  static constexpr std::size_t wellFilled = mostInBlock * 7 / 8;
  static constexpr std::size_t mostJoined = mostInBlock * 3 / 4;
  static constexpr BlockNumber noBlock = 0xffff;
  // Only the first `count` ids have values, since writing all of a spare block would take its time.
  struct Block {  // NOLINT(cppcoreguidelines-pro-type-member-init): the reason is above
    [[nodiscard]] std::span<const RowId> Ids() const noexcept { return {ids.data(), count}; }
    std::uint32_t count = 0;
    std::array<RowId, mostInBlock> ids;
  };

  [[nodiscard]] Block& BlockAt(std::size_t place) const noexcept {
    return *blocks[sequence[place]];
  }
  /// Looks first where it looked last, since rows are often read one by one.
  [[nodiscard]] std::size_t PlaceOf(std::size_t index) const noexcept {
    const bool isThere = index - starts[lastPlace] < BlockAt(lastPlace).count;
    return isThere ? lastPlace : SearchPlaceOf(index);
  }
  [[nodiscard]] std::size_t SearchPlaceOf(std::size_t index) const noexcept;
  [[nodiscard]] std::size_t BlocksFor(std::size_t insertions) const noexcept;
  void ReserveBlocks(std::size_t more, RowId idsBelow);
  void ReleaseSpares() noexcept;
  void OpenPlaces(std::size_t place, std::size_t count) noexcept;
  void ClosePlaces(std::size_t place, std::size_t count) noexcept;
  void Renumber(std::size_t place) noexcept;
  void Recount(std::size_t place, std::size_t changed) noexcept;
  void InsertWithin(std::size_t place, std::size_t offset, std::span<const RowId> ids) noexcept;
  void Spread(std::size_t place, std::size_t offset, std::span<const RowId> ids) noexcept;
  void Append(std::span<const RowId> ids) noexcept;
  void Fill(std::size_t place, std::size_t count,
            std::span<const std::span<const RowId>> parts) noexcept;
  void JoinWithNext(std::size_t place) noexcept;
  void Clear() noexcept;

  std::vector<std::unique_ptr<Block>> blocks;  // by number; null for a number not in use
  std::vector<std::unique_ptr<Block>> spares;  // blocks that are to be used next
  std::vector<BlockNumber> unused;
  std::vector<BlockNumber> sequence;
  std::vector<std::uint32_t> starts;  // by place: the index of the block's first id
  std::vector<BlockNumber> placeOf;   // by number
  std::vector<BlockNumber> blockOf;   // by id; noBlock for an id that is not in
  std::size_t size = 0;
  mutable std::size_t lastPlace = 0;  // which PlaceOf has found; a place in use, if there is one
  std::size_t promised = 0;           // insertions that were reserved and not yet made
};

}  // namespace details

}  // namespace DataBinding

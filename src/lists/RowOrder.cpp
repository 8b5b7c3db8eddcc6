// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/RowOrder.h"

#include <cassert>
#include <limits>
#include <utility>

namespace DataBinding::details {

namespace {

constexpr std::size_t DividedUp(std::size_t count, std::size_t size) noexcept {
  return (count + size - 1) / size;
}

/// Throws std::length_error, as a container does that cannot grow.
void ThrowTooLong() { std::vector<RowId>().reserve(std::numeric_limits<std::size_t>::max()); }

}  // namespace

/// The search goes over the whole block without a branch, which compilers turn into a few vector
/// instructions.
std::size_t RowOrder::IndexOf(RowId id) const noexcept {
  if (!Contains(id)) return nowhere;
  const BlockNumber number = blockOf[id];
  const auto ids = blocks[number]->Ids();
  std::uint32_t offset = 0;
  for (std::uint32_t i = 0; i < ids.size(); ++i) offset |= ids[i] == id ? i : 0;
  return starts[placeOf[number]] + offset;
}

void RowOrder::CopyIds(std::size_t at, std::span<RowId> to) const noexcept {
  while (!to.empty()) {
    const std::size_t place = PlaceOf(at);
    const auto ids = BlockAt(place).Ids().subspan(at - starts[place]);
    const std::size_t here = std::min(ids.size(), to.size());
    std::copy_n(ids.begin(), here, to.begin());
    at += here;
    to = to.subspan(here);
  }
}

void RowOrder::Reserve(std::size_t insertions, RowId idsBelow) {
  if (insertions >= mostInBlock * noBlock) ThrowTooLong();
  ReserveBlocks(BlocksFor(insertions), idsBelow);
  promised = insertions;
  ReleaseSpares();
}

void RowOrder::Insert(std::size_t at, std::span<const RowId> ids) noexcept {
  assert(at <= size);
  if (ids.empty()) return;
  const bool isAtEnd = at == size;
  size += ids.size();
  promised -= std::min(promised, ids.size());
  if (isAtEnd) {
    Append(ids);
  } else {
    const std::size_t place = PlaceOf(at);
    const std::size_t offset = at - starts[place];
    const bool hasRoom = BlockAt(place).count + ids.size() <= mostInBlock;
    hasRoom ? InsertWithin(place, offset, ids) : Spread(place, offset, ids);
  }
  ReleaseSpares();
}

void RowOrder::Erase(std::size_t at, std::size_t count) noexcept {
  assert(at <= size && count <= size - at);
  if (count == 0) return;
  const std::size_t first = PlaceOf(at);
  std::size_t end = first;
  std::size_t emptied = first;  // the first of these places whose block is empty, or `end`
  for (std::size_t offset = at - starts[first], left = count; left > 0; ++end, offset = 0) {
    Block& block = BlockAt(end);
    const std::size_t here = std::min<std::size_t>(left, block.count - offset);
    RowId* const gone = block.ids.data() + offset;
    RowId* const rest = gone + here;
    std::for_each(gone, rest, [this](RowId id) { blockOf[id] = noBlock; });
    std::copy(rest, block.ids.data() + block.count, gone);
    block.count -= static_cast<std::uint32_t>(here);
    left -= here;
    if (end == emptied && block.count > 0) ++emptied;
  }
  size -= count;
  const bool endsInBlock = end > emptied && BlockAt(end - 1).count > 0;
  ClosePlaces(emptied, end - emptied - (endsInBlock ? 1 : 0));
  Recount(first, 2);
  if (first < sequence.size()) JoinWithNext(first);
  if (first > 0) JoinWithNext(first - 1);
}

/// The rows are moved by the blockful, so that they need little room on the way.
void RowOrder::Move(std::size_t from, std::size_t count, std::size_t to) noexcept {
  assert(from + count <= size && to + count <= size);
  if (from == to) return;
  std::array<RowId, mostInBlock> ids{};
  for (std::size_t done = 0; done < count;) {
    const std::size_t here = std::min(mostInBlock, count - done);
    const std::size_t offset = to < from ? done : count - done - here;
    CopyIds(from + offset, {ids.data(), here});
    Erase(from + offset, here);
    Insert(to + offset, {ids.data(), here});
    done += here;
  }
}

void RowOrder::Assign(std::span<const RowId> ids) {
  const std::size_t wanted = DividedUp(ids.size(), wellFilled);
  const RowId idsBelow = ids.empty() ? 0 : *std::max_element(ids.begin(), ids.end()) + 1;
  ReserveBlocks(wanted > sequence.size() ? wanted - sequence.size() : 0, idsBelow);
  Clear();
  size = ids.size();
  Append(ids);
  ReleaseSpares();
}

std::size_t RowOrder::SearchPlaceOf(std::size_t index) const noexcept {
  const auto behind = std::upper_bound(starts.begin(), starts.end(), index);
  lastPlace = static_cast<std::size_t>(behind - starts.begin()) - 1;
  return lastPlace;
}

/// How many blocks so many insertions may need at most.
///
/// The argument counts credits: a block has (count - 128) / 128 of them, or none if that is
/// negative, and so at most one. A row that is inserted brings 1 / 128. A block that is shared out
/// takes one credit for each block that is added, since the rows are shared out evenly. Blocks that
/// are joined set one block free, and the joined one has less than one credit. Appending adds a
/// block that may stay small, but only one at a time: hence the further one.
std::size_t RowOrder::BlocksFor(std::size_t insertions) const noexcept {
  if (insertions == 0) return 0;
  return std::min(insertions, sequence.size() + insertions * 2 / mostInBlock + 1);
}

/// Sees to so many spare blocks, and to room in each table for all blocks and ids.
void RowOrder::ReserveBlocks(std::size_t more, RowId idsBelow) {
  const std::size_t all = sequence.size() + more;
  if (all >= noBlock) ThrowTooLong();
  const std::size_t tables = std::max(all, blocks.size());
  if (tables > sequence.capacity()) {
    const std::size_t room = std::max(tables, sequence.capacity() * 2);
    spares.reserve(room);
    unused.reserve(room);
    starts.reserve(room);
    placeOf.reserve(room);
    blocks.reserve(room);
    sequence.reserve(room);
  }
  if (idsBelow > blockOf.capacity()) {
    blockOf.reserve(std::max<std::size_t>(idsBelow, blockOf.capacity() / 8 * 9));
  }
  if (idsBelow > blockOf.size()) blockOf.resize(idsBelow, noBlock);
  while (spares.size() < more) spares.push_back(std::make_unique_for_overwrite<Block>());
  while (blocks.size() < all) {
    unused.push_back(static_cast<BlockNumber>(blocks.size()));
    blocks.emplace_back();
    placeOf.push_back(0);
  }
}

/// Keeps the blocks that are promised, and some more if there are many blocks.
void RowOrder::ReleaseSpares() noexcept {
  const std::size_t kept = BlocksFor(promised) + sequence.size() / 32 + 2;
  if (spares.size() > kept) spares.resize(kept);
}

/// Puts so many empty blocks into the sequence.
void RowOrder::OpenPlaces(std::size_t place, std::size_t count) noexcept {
  assert(count <= spares.size());
  const auto where = static_cast<std::ptrdiff_t>(place);
  sequence.insert(sequence.begin() + where, count, noBlock);
  starts.insert(starts.begin() + where, count, 0);
  for (std::size_t i = 0; i < count; ++i) {
    const BlockNumber number = unused.back();
    unused.pop_back();
    blocks[number] = std::move(spares.back());
    spares.pop_back();
    blocks[number]->count = 0;
    sequence[place + i] = number;
  }
  Renumber(place);
}

void RowOrder::ClosePlaces(std::size_t place, std::size_t count) noexcept {
  if (count == 0) return;
  const auto first = static_cast<std::ptrdiff_t>(place);
  const auto end = static_cast<std::ptrdiff_t>(place + count);
  for (std::size_t i = place; i < place + count; ++i) {
    const BlockNumber number = sequence[i];
    spares.push_back(std::move(blocks[number]));
    unused.push_back(number);
  }
  sequence.erase(sequence.begin() + first, sequence.begin() + end);
  starts.erase(starts.begin() + first, starts.begin() + end);
  lastPlace = 0;
  Renumber(place);
}

/// Files the places from one on, after blocks were put into the sequence or taken out.
void RowOrder::Renumber(std::size_t place) noexcept {
  for (std::size_t i = place; i < sequence.size(); ++i) {
    placeOf[sequence[i]] = static_cast<BlockNumber>(i);
  }
}

/// Counts the rows of so many blocks anew; the starts of those behind them change alike.
void RowOrder::Recount(std::size_t place, std::size_t changed) noexcept {
  const std::size_t end = std::min(place + changed, sequence.size());
  std::uint32_t start = place == 0 ? 0 : starts[place - 1] + BlockAt(place - 1).count;
  for (std::size_t i = place; i < end; ++i) {
    starts[i] = start;
    start += BlockAt(i).count;
  }
  if (end == sequence.size() || start == starts[end]) return;
  const std::uint32_t difference = start - starts[end];
  for (std::size_t i = end; i < starts.size(); ++i) starts[i] += difference;
}

void RowOrder::InsertWithin(std::size_t place, std::size_t offset,
                            std::span<const RowId> ids) noexcept {
  Block& block = BlockAt(place);
  RowId* const where = block.ids.data() + offset;
  RowId* const end = block.ids.data() + block.count;
  std::copy_backward(where, end, end + ids.size());
  std::copy(ids.begin(), ids.end(), where);
  block.count += static_cast<std::uint32_t>(ids.size());
  for (const RowId id : ids) blockOf[id] = sequence[place];
  Recount(place, 1);
}

/// Shares a block's rows and the new ones out evenly among as many blocks as they need.
void RowOrder::Spread(std::size_t place, std::size_t offset, std::span<const RowId> ids) noexcept {
  const Block former = BlockAt(place);
  const auto own = former.Ids();
  const std::size_t count = DividedUp(own.size() + ids.size(), mostInBlock);
  OpenPlaces(place + 1, count - 1);
  const std::span<const RowId> parts[] = {own.first(offset), ids, own.subspan(offset)};
  Fill(place, count, parts);
}

void RowOrder::Append(std::span<const RowId> ids) noexcept {
  std::size_t place = sequence.size();
  if (place > 0) {
    const std::size_t room = mostInBlock - BlockAt(place - 1).count;
    const std::size_t here = std::min(room, ids.size());
    InsertWithin(place - 1, BlockAt(place - 1).count, ids.first(here));
    ids = ids.subspan(here);
  }
  if (ids.empty()) return;
  const std::size_t count = DividedUp(ids.size(), wellFilled);
  OpenPlaces(place, count);
  Fill(place, count, {&ids, 1});
}

/// Fills so many blocks evenly with the parts, whose ids stand in none of them.
void RowOrder::Fill(std::size_t place, std::size_t count,
                    std::span<const std::span<const RowId>> parts) noexcept {
  const std::size_t changed = count;
  std::size_t left = 0;
  for (const auto part : parts) left += part.size();
  for (std::size_t i = 0; i < count; ++i) BlockAt(place + i).count = 0;
  std::size_t current = place;
  std::size_t share = DividedUp(left, count);
  for (auto part : parts) {
    while (!part.empty()) {
      if (BlockAt(current).count == share) {
        share = DividedUp(left, --count);
        ++current;
      }
      Block& block = BlockAt(current);
      const std::size_t here = std::min<std::size_t>(share - block.count, part.size());
      std::copy_n(part.begin(), here, block.ids.begin() + block.count);
      for (const RowId id : part.first(here)) blockOf[id] = sequence[current];
      block.count += static_cast<std::uint32_t>(here);
      left -= here;
      part = part.subspan(here);
    }
  }
  Recount(place, changed);
}

/// Joins a block with the one behind it if both are small, so that erased rows give their room
/// back.
void RowOrder::JoinWithNext(std::size_t place) noexcept {
  if (place + 1 >= sequence.size()) return;
  Block& block = BlockAt(place);
  const auto next = BlockAt(place + 1).Ids();
  if (block.count + next.size() > mostJoined) return;
  std::copy(next.begin(), next.end(), block.ids.begin() + block.count);
  block.count += static_cast<std::uint32_t>(next.size());
  for (const RowId id : next) blockOf[id] = sequence[place];
  ClosePlaces(place + 1, 1);
}

void RowOrder::Clear() noexcept {
  ForEach([this](std::span<const RowId> ids) {
    for (const RowId id : ids) blockOf[id] = noBlock;
  });
  ClosePlaces(0, sequence.size());
  size = 0;
}

}  // namespace DataBinding::details

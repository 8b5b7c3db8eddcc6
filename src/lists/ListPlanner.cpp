// SPDX-License-Identifier: Apache-2.0
#include "ListPlanner.h"

#include <algorithm>
#include <functional>

namespace DataBinding::details {

namespace {

/// Up to so many steps are told in a small list; in a great one, a quarter of its rows.
constexpr std::size_t leastLimit = 64;

}  // namespace

ListPlanner::ListPlanner(ListEngine& itsEngine, const ListEngine::State& from, ListOperation& to)
    : engine(itsEngine), state(from), operation(to), reader(itsEngine.PlanningReader()) {
  before.reserve(state.order.Size());
  state.order.ForEach([&](auto ids) { before.insert(before.end(), ids.begin(), ids.end()); });
  isKept.resize(before.size());
}

void ListPlanner::Assign(const RowArray& rows) {
  places.assign(rows.count, isNew);
  if (engine.HasKey()) {
    MatchByKey(rows);
  } else {
    MatchByPlace(rows);
  }
  const bool isOrderSame = inPlace == rows.count && rows.count == before.size();
  if (isOrderSame && changed.empty()) return;
  TakeRows(rows);
  operation.makesDoubles = engine.HasDouble(state, operation);
  operation.AddChanges();
  if (!isOrderSame) PlanOrder();
}

/// A row is mostly followed by the same row as before, so that one is tried first. Comparing all
/// fields with it tells whether the keys are equal, too, and the key need not be looked up.
void ListPlanner::MatchByKey(const RowArray& rows) {
  const bool hasDoubles = state.keys.HasDoubles();
  std::size_t guess = 0;
  for (std::size_t j = 0; j < rows.count; ++j) {
    std::size_t place = guess;
    const bool mayGuess = !hasDoubles && place < before.size() && !isKept[place];
    std::uint64_t differing = mayGuess ? Differing(place, rows[j]) : engine.keyBit;
    if ((differing & engine.keyBit) != 0) {
      place = FindMatch(rows[j]);
      if (place == isNew) continue;
      differing = Differing(place, rows[j]);
    }
    Match(j, place, differing);
    guess = place + 1;
  }
}

std::uint64_t ListPlanner::Differing(std::size_t place, const void* row) const {
  return engine.storage.Table().differing(reader.Row(before[place]), row);
}

std::size_t ListPlanner::FindMatch(const void* row) {
  RowId found = state.keys.Find(engine.storage.Table().key(row), reader);
  if (found == KeyTable::none) return isNew;
  if (state.keys.Next(found) != KeyTable::none) found = NextDouble(found);
  if (found == KeyTable::none) return isNew;
  const std::size_t place = state.order.IndexOf(found);
  return isKept[place] ? isNew : place;
}

RowId ListPlanner::NextDouble(RowId first) {
  const auto [entry, isFirst] = doubles.try_emplace(first);
  std::vector<RowId>& left = entry->second;
  if (isFirst) {
    for (RowId id = first; id != KeyTable::none; id = state.keys.Next(id)) left.push_back(id);
    std::ranges::sort(left, std::greater(), [&](RowId id) { return state.order.IndexOf(id); });
  }
  if (left.empty()) return KeyTable::none;
  const RowId next = left.back();
  left.pop_back();
  return next;
}

void ListPlanner::MatchByPlace(const RowArray& rows) {
  const std::size_t most = std::min(rows.count, before.size());
  std::size_t head = 0;
  while (head < most && Differing(head, rows[head]) == 0) ++head;
  std::size_t tail = 0;
  while (tail < most - head &&
         Differing(before.size() - 1 - tail, rows[rows.count - 1 - tail]) == 0) {
    ++tail;
  }
  for (std::size_t j = 0; j < rows.count; ++j) {
    const bool isInTail = j >= rows.count - tail;
    const std::size_t place = isInTail ? j + before.size() - rows.count : j;
    if (isInTail || j < before.size() - tail) Match(j, place, Differing(place, rows[j]));
  }
}

void ListPlanner::Match(std::size_t j, std::size_t place, std::uint64_t differing) {
  places[j] = place;
  isKept[place] = true;
  if (j == place) ++inPlace;
  if (differing == 0) return;
  changed.push_back(j);
  fields |= differing;
}

/// Moves the new rows into the list's slots, and what the changed ones will be beside them.
void ListPlanner::TakeRows(const RowArray& rows) {
  const auto added = static_cast<std::size_t>(std::ranges::count(places, isNew));
  operation.ReserveRows(added, changed.size());
  after.reserve(rows.count);
  // Observers hear of the changed rows in the order in which they stand.
  std::ranges::sort(changed, {}, [&](std::size_t j) { return places[j]; });
  for (std::size_t j = 0; j < rows.count; ++j) {
    after.push_back(places[j] == isNew ? operation.AddRow(rows[j]) : before[places[j]]);
  }
  for (const std::size_t j : changed) {
    operation.AddChange(after[j], engine.others.Take(rows[j]));
  }
  operation.AddFields(fields);
}

void ListPlanner::MoveBefore(std::span<const RowId> rows, std::size_t place) {
  std::vector<std::size_t> moving;
  for (const RowId row : rows) {
    if (state.order.Contains(row)) moving.push_back(state.order.IndexOf(row));
  }
  std::vector<bool> isMoving(before.size());
  for (const std::size_t at : moving) isMoving[at] = true;
  for (std::size_t at = 0; at <= before.size(); ++at) {
    if (at == place) places.insert(places.end(), moving.begin(), moving.end());
    if (at < before.size() && !isMoving[at]) places.push_back(at);
  }
  for (const std::size_t at : places) after.push_back(before[at]);
  isKept.assign(before.size(), true);
  PlanOrder();
}

void ListPlanner::PlanOrder() {
  if (!IsInOrder()) FindStaying();
  const std::size_t rows = std::max(before.size(), after.size());
  if (CountSteps() <= std::max(leastLimit, rows / 4)) {
    AddRemovals();
    AddMoves();
    AddInsertions();
    return;
  }
  for (std::size_t at = 0; at < before.size(); ++at) {
    if (!isKept[at]) operation.removed.push_back(before[at]);
  }
  const bool areSame = operation.removed.empty() && before.size() == after.size();
  operation.AddStep(areSame ? ListChangeKind::Reordered : ListChangeKind::Reset, 0, after);
}

bool ListPlanner::IsInOrder() const noexcept {
  std::size_t least = 0;
  for (const std::size_t place : places) {
    if (place == isNew) continue;
    if (place < least) return false;
    least = place;
  }
  return true;
}

/// Finds which kept rows stay where they are: the longest run that stands in the right order.
void ListPlanner::FindStaying() {
  for (std::size_t j = 0; j < places.size(); ++j) {
    if (places[j] != isNew) kept.push_back(j);
  }
  stays.assign(kept.size(), false);
  ranks.resize(before.size());
  for (std::size_t at = 0, rank = 0; at < before.size(); ++at) {
    ranks[at] = rank;
    if (isKept[at]) ++rank;
  }
  // ends[n] is the row with the least place in which a run of n + 1 rows can end; each row knows
  // the one before it in the longest run that ends in it.
  std::vector<std::size_t> ends;
  std::vector<std::size_t> previous(kept.size(), isNew);
  const auto placeOf = [&](std::size_t i) { return places[kept[i]]; };
  for (std::size_t i = 0; i < kept.size(); ++i) {
    const auto end = std::ranges::lower_bound(ends, placeOf(i), {}, placeOf);
    if (end != ends.begin()) previous[i] = *std::prev(end);
    if (end == ends.end()) {
      ends.push_back(i);
    } else {
      *end = i;
    }
  }
  for (std::size_t i = ends.back(); i != isNew; i = previous[i]) stays[i] = true;
}

template <class Joins>
std::size_t ListPlanner::EndOfRun(std::size_t first, std::size_t size, Joins joins) const {
  std::size_t end = first + 1;
  while (end < size && joins(end)) ++end;
  return end;
}

/// Tells whether a kept row moves and stands behind the one that moves before it.
bool ListPlanner::MovesWithLast(std::size_t i) const noexcept {
  return !stays[i] && i > 0 && !stays[i - 1] &&
         ranks[places[kept[i]]] == ranks[places[kept[i - 1]]] + 1;
}

std::size_t ListPlanner::CountSteps() const {
  std::size_t steps = 0;
  for (std::size_t at = 0; at < before.size(); ++at) {
    if (!isKept[at] && (at == 0 || isKept[at - 1])) ++steps;
  }
  for (std::size_t i = 0; i < kept.size(); ++i) {
    if (!stays[i] && !MovesWithLast(i)) ++steps;
  }
  for (std::size_t j = 0; j < places.size(); ++j) {
    if (places[j] == isNew && (j == 0 || places[j - 1] != isNew)) ++steps;
  }
  return steps;
}

void ListPlanner::AddRemovals() {
  for (std::size_t end = before.size(); end > 0;) {
    std::size_t first = end;
    while (first > 0 && !isKept[first - 1]) --first;
    if (first < end) {
      operation.AddStep(ListChangeKind::Removed, first,
                        std::span(before).subspan(first, end - first));
    }
    end = first == end ? end - 1 : first;
  }
}

/// Puts each run that moves behind the row that it follows. That one stands right already. The
/// places are found in an order of the kept rows on which the moves are tried.
void ListPlanner::AddMoves() {
  if (kept.empty()) return;
  std::vector<RowId> rows;
  rows.reserve(kept.size());
  for (std::size_t at = 0; at < before.size(); ++at) {
    if (isKept[at]) rows.push_back(before[at]);
  }
  RowOrder tried;
  tried.Assign(rows);
  tried.Reserve(kept.size(), engine.storage.IdsBelow());
  for (std::size_t i = 0; i < kept.size();) {
    const std::size_t end =
        EndOfRun(i, kept.size(), [&](std::size_t next) { return MovesWithLast(next); });
    if (!stays[i]) {
      const std::size_t from = tried.IndexOf(after[kept[i]]);
      std::size_t to = i == 0 ? 0 : tried.IndexOf(after[kept[i - 1]]) + 1;
      if (from < to) to -= end - i;
      rows.clear();
      for (std::size_t moved = i; moved < end; ++moved) rows.push_back(after[kept[moved]]);
      if (from != to) {
        operation.AddStep(ListChangeKind::Moved, from, rows, to);
        tried.Move(from, end - i, to);
      }
    }
    i = stays[i] ? i + 1 : end;
  }
}

void ListPlanner::AddInsertions() {
  for (std::size_t j = 0; j < places.size();) {
    if (places[j] != isNew) {
      ++j;
      continue;
    }
    const std::size_t end =
        EndOfRun(j, places.size(), [&](std::size_t next) { return places[next] == isNew; });
    operation.AddStep(ListChangeKind::Inserted, j, std::span(after).subspan(j, end - j));
    j = end;
  }
}

}  // namespace DataBinding::details

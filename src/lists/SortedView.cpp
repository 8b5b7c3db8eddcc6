// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/SortedView.h"

#include <algorithm>
#include <utility>

#include "RowSort.h"

namespace DataBinding::details {

namespace {

/// Compares one row with others. Rows that are equal stand in the order of the list.
class RowPlace {
 public:
  RowPlace(const RowLess& itsLess, const ListNode& itsSource, RowId itsId) noexcept
      : less(itsLess), source(itsSource), id(itsId), row(source.RowOf(id)) {}

  /// Says whether the row stands before another. Throws what the comparison throws.
  [[nodiscard]] bool IsBefore(RowId other) const {
    const void* const otherRow = source.RowOf(other);
    if (less(row, otherRow)) return true;
    if (less(otherRow, row)) return false;
    if (index == RowOrder::nowhere) index = source.IndexOfRow(id);
    return index < source.IndexOfRow(other);
  }

 private:
  const RowLess& less;
  const ListNode& source;
  RowId id;
  const void* row;
  mutable std::size_t index = RowOrder::nowhere;
};

/// Finds the first of `size` sorted rows, from `first` on, before which a row stands. It looks near
/// the first one at first, in steps that double.
template <class Lookup>
std::size_t FindFrom(std::size_t first, std::size_t size, Lookup at, const RowPlace& place) {
  std::size_t low = first;
  std::size_t high = first;
  for (std::size_t step = 1; high < size && !place.IsBefore(at(high)); step *= 2) {
    low = high + 1;
    high += step;
  }
  high = std::min(high, size);
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (place.IsBefore(at(middle))) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

}  // namespace

SortedView::SortedView(ListNode& itsNode, ListNode& itsSource, void (*emptyNode)(ListNode& self),
                       RowSorting functions)
    : ListView(itsNode, itsSource, emptyNode), sorting(std::move(functions)) {}

void SortedView::SortBy(RowSorting functions) {
  if (IsAsleep()) {
    sorting = std::move(functions);
    return;
  }
  TakeTurn([this, functions = std::move(functions)] { SortAnew(functions); });
}

void SortedView::SortAnew(RowSorting functions) {
  if (!IsAwake()) return std::swap(sorting, functions);
  ReserveAll();
  PrepareOwn(source->Size());
  std::swap(sorting, functions);
  TakeRowsOfSource();
  Evaluate();
  TellTarget();
}

void SortedView::PassOn(const ListStep& step) noexcept { TellBefore(step); }

void SortedView::TakeTarget(const ListStep& step) noexcept {
  target.assign(step.rows.begin(), step.rows.end());
  Evaluate();
  BeginTarget();
}

/// Rows that are equal stand in the order of the list.
void SortedView::Move(const ListStep& step) noexcept { Replace(step.rows, false); }

void SortedView::AskChanged(const ListStep& step) noexcept {
  const auto read = sorting.fields;
  const bool mayMove = read == RowSorting::anything || (step.fields & read) != 0;
  if (TellAfter(step) && mayMove) Replace(step.rows, true);
}

void SortedView::Evaluate() noexcept {
  const std::size_t live = Sort(target);
  for (std::size_t i = 0; i < target.size(); ++i) target[i] = compared[i].id;
  asideInTarget = target.size() - live;
}

/// Sorts rows that are given in the order of the list into `compared`. Returns how many are sorted;
/// the others cannot be compared. A comparison that changes the list may have larger arrays take
/// the place of these; the outgrown ones are sorted to the end.
std::size_t SortedView::Sort(std::span<const RowId> ids) noexcept {
  compared.clear();
  for (const RowId id : ids) compared.push_back({id, source->RowOf(id)});
  if (spare.size() < ids.size()) spare.resize(ids.size());
  const RowLess less(sorting.compare, node);
  const std::span<ComparedRow> sorted(compared);
  const std::size_t live = SortRows(sorted, spare.data(), less, sorting.number);
  if (compared.data() != sorted.data()) std::ranges::copy(sorted, compared.begin());
  return live == 1 && !less.Accepts(compared[0].row) ? 0 : live;
}

void SortedView::Remove(const ListStep& step) noexcept {
  placed.clear();
  for (const RowId id : step.rows) placed.push_back({order.IndexOf(id), id});
  std::ranges::sort(placed, {}, &PlacedRow::at);
  const std::size_t sorted = Sorted();
  for (const PlacedRow& row : placed) aside -= row.at >= sorted;
  if (!TellRemovals() || !AreRowsSources()) return;
  for (std::size_t i = 0; i < placed.size(); ++i) CheckGap(placed[i].at - i);
}

void SortedView::Insert(const ListStep& step) noexcept {
  const std::size_t live = Sort(step.rows);
  if (step.rows.size() <= few) {
    aside += PlaceSorted(live, Sorted(), order.Size(), [this](auto at) { return order.At(at); });
  } else {
    rows.resize(order.Size());
    CopyIds(0, rows);
    aside += PlaceSorted(live, Sorted(), order.Size(), [this](auto at) { return rows[at]; });
  }
  TellInsertions();
}

/// Finds the places of `compared` among sorted rows. Those from `live` on, and those whose
/// comparison throws, come to `end`, behind all others; returns how many these are.
template <class Lookup>
std::size_t SortedView::PlaceSorted(std::size_t live, std::size_t sorted, std::size_t end,
                                    Lookup at) noexcept {
  const RowLess less(sorting.compare, node);
  std::size_t last = 0;
  placed.clear();
  for (std::size_t i = 0; i < compared.size(); ++i) {
    const RowPlace place(less, *source, compared[i].id);
    try {
      if (i >= live) continue;
      last = FindFrom(last, sorted, at, place);
      placed.push_back({last, compared[i].id});
      compared[i].row = nullptr;
    } catch (...) {
      less.Report();
    }
  }
  const std::size_t found = placed.size();
  for (const ComparedRow& row : compared) {
    if (row.row != nullptr) placed.push_back({end, row.id});
  }
  return placed.size() - found;
}

void SortedView::Replace(std::span<const RowId> ids, bool isContentNew) noexcept {
  if (ids.size() > few) return ReplaceMany(ids, isContentNew);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const bool isSetAside = order.IndexOf(ids[i]) >= Sorted();
    if (isSetAside && !isContentNew) continue;
    if (!ReplaceOne(ids[i], ids.subspan(i))) return;
  }
}

/// Moves a row to its place among the sorted ones. The loose ones, it and those that are still to
/// be placed, are passed over.
bool SortedView::ReplaceOne(RowId id, std::span<const RowId> loose) noexcept {
  const std::size_t from = order.IndexOf(id);
  const bool wasAside = from >= Sorted();
  const std::size_t place = FindPlace(id, from, loose);
  const bool isAside = place == RowOrder::nowhere;
  if (isAside && wasAside) return true;
  aside = aside + (isAside ? 1 : 0) - (wasAside ? 1 : 0);
  const std::size_t to = isAside ? order.Size() - 1 : place > from ? place - 1 : place;
  if (to == from) return true;
  if (!Tell({ListChangeKind::Moved, from, 1, to, {&id, 1}})) return false;
  if (AreRowsSources()) CheckGap(to < from ? from + 1 : from);
  return true;
}

bool SortedView::AreRowsSources() const noexcept {
  const RowTable* const table = source->Table();
  return table != nullptr && table->areSources;
}

/// Compares the row at a place with the one before it, and has all rows sorted anew if they stand
/// the wrong way round.
void SortedView::CheckGap(std::size_t at) noexcept {
  if (isSortDue || at == 0 || at >= Sorted()) return;
  const RowLess less(sorting.compare, node);
  try {
    if (!RowPlace(less, *source, order.At(at)).IsBefore(order.At(at - 1))) return;
    TakeTurn([this] {
      isSortDue = false;
      SortAnew(sorting);
    });
    isSortDue = true;
  } catch (...) {
    less.Report();
  }
}

/// Finds before which row a row is to stand, as near to its present place as possible; `nowhere` if
/// it cannot be compared.
std::size_t SortedView::FindPlace(RowId id, std::size_t from,
                                  std::span<const RowId> loose) noexcept {
  const RowLess less(sorting.compare, node);
  const RowPlace place(less, *source, id);
  const auto isLoose = [&](std::size_t index) {
    return std::ranges::find(loose, order.At(index)) != loose.end();
  };
  if (!less.Accepts(source->RowOf(id))) return RowOrder::nowhere;
  std::size_t low = 0;
  std::size_t high = Sorted();
  try {
    while (low < high) {
      const std::size_t middle = (low + high) / 2;
      std::size_t probe = middle;
      while (probe < high && isLoose(probe)) ++probe;
      if (probe == high || place.IsBefore(order.At(probe))) {
        high = middle;
      } else {
        low = probe + 1;
      }
    }
  } catch (...) {
    less.Report();
    return RowOrder::nowhere;
  }
  while (low > from + 1 && isLoose(low - 1)) --low;
  while (low < std::min(from, Sorted()) && isLoose(low)) ++low;
  return low;
}

/// Sorts the rows among themselves, merges them into the others, and tells the difference. Rows
/// that are sources may have changed without having been told of yet, so all of them are sorted.
void SortedView::ReplaceMany(std::span<const RowId> ids, bool isContentNew) noexcept {
  if (AreRowsSources()) {
    TakeRowsOfSource();
    Evaluate();
    TellTarget();
    return;
  }
  Mark(ids);
  for (std::size_t i = isContentNew ? order.Size() : Sorted(); i < order.Size(); ++i) {
    Unmark(order.At(i));
  }
  TakeMarkedInOrderOfList(ids);
  const std::size_t live = Sort(rows);
  MergeLoose(live);
  if (CountMoves() > MostRanges()) {
    TellTarget();
  } else {
    aside = asideInTarget;
    TellMoves();
  }
}

/// Puts those of the rows that are marked into `rows`, in the order of the list. Where they are
/// many, going over the whole list takes less than finding the place of each.
void SortedView::TakeMarkedInOrderOfList(std::span<const RowId> ids) noexcept {
  constexpr std::size_t rowsPassedInTheTimeOfASearch = 64;
  const std::size_t size = source->Size();
  if (ids.size() > size / rowsPassedInTheTimeOfASearch) {
    rows.resize(size);
    source->CopyIds(0, rows);
    std::erase_if(rows, [this](RowId id) { return !IsMarked(id); });
    return;
  }
  placed.clear();
  for (const RowId id : ids) {
    if (IsMarked(id)) placed.push_back({source->IndexOfRow(id), id});
  }
  std::ranges::sort(placed, {}, &PlacedRow::at);
  rows.clear();
  for (const PlacedRow& row : placed) rows.push_back(row.id);
}

/// Makes the target of the rows that are not marked, as they stand, and those of `compared`.
void SortedView::MergeLoose(std::size_t live) noexcept {
  std::size_t index = 0;
  std::size_t sorted = 0;
  rows.clear();
  order.ForEach([&](std::span<const RowId> some) {
    for (const RowId id : some) {
      const bool isSorted = index++ < Sorted();
      if (IsMarked(id)) continue;
      rows.push_back(id);
      sorted += isSorted ? 1 : 0;
    }
  });
  const std::size_t dropped =
      PlaceSorted(live, sorted, rows.size(), [this](auto at) { return rows[at]; });
  asideInTarget = rows.size() - sorted + dropped;
  MergeInto(rows);
}

/// Unmarks the marked rows that need not move, and counts the ranges that are to be moved.
std::size_t SortedView::CountMoves() noexcept {
  std::size_t count = 0;
  for (std::size_t i = 0; i < target.size() && count <= MostRanges(); ++i) {
    if (!IsMarked(target[i])) continue;
    std::size_t end = i;
    while (end < target.size() && IsMarked(target[end])) ++end;
    // All rows between these two, which stay, have their places between these two, too.
    std::size_t low = i == 0 ? 0 : order.IndexOf(target[i - 1]) + 1;
    const std::size_t high = end == target.size() ? end : order.IndexOf(target[end]);
    std::size_t next = RowOrder::nowhere;  // the place that would join the range before it
    for (; i < end && count <= MostRanges(); ++i) {
      const std::size_t at = order.IndexOf(target[i]);
      if (at >= low && at < high) {
        low = at + 1;
        Unmark(target[i]);
        next = RowOrder::nowhere;
      } else {
        count += at == next ? 0 : 1;
        next = at + 1;
      }
    }
  }
  return count;
}

/// Moves the marked rows, each behind the row that stands before it in the target.
bool SortedView::TellMoves() noexcept {
  for (std::size_t i = 0, count = 1; i < target.size(); i += count, count = 1) {
    if (!IsMarked(target[i])) continue;
    const std::size_t from = order.IndexOf(target[i]);
    while (i + count < target.size() && IsMarked(target[i + count]) &&
           order.IndexOf(target[i + count]) == from + count) {
      ++count;
    }
    const std::size_t behind = i == 0 ? 0 : order.IndexOf(target[i - 1]) + 1;
    const std::size_t to = behind > from ? behind - count : behind;
    if (to == from) continue;
    const auto moved = std::span(target).subspan(i, count);
    if (!Tell({ListChangeKind::Moved, from, count, to, moved})) return false;
  }
  return true;
}

}  // namespace DataBinding::details

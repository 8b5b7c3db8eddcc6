// SPDX-License-Identifier: Apache-2.0
// This file holds how a view tells what it has found out: in ranges, or at once.
#include <algorithm>

#include "DataBinding/lists/details/ListView.h"

namespace DataBinding::details {

void ListView::Before(const ListStep& step) noexcept {
  if (!isAwake) return;
  switch (step.kind) {
    case ListChangeKind::Removed:
      return Remove(step);
    case ListChangeKind::Changed:
      return PassOn(step);
    case ListChangeKind::Reordered:
    case ListChangeKind::Reset:
      return step.rows.empty() ? TakeNothing(step) : TakeTarget(step);
    default:
      return;
  }
}

void ListView::After(const ListStep& step) noexcept {
  if (!isAwake) return;
  switch (step.kind) {
    case ListChangeKind::Inserted:
      return Insert(step);
    case ListChangeKind::Moved:
      return Move(step);
    case ListChangeKind::Changed:
      return AskChanged(step);
    case ListChangeKind::Reordered:
    case ListChangeKind::Reset:
      EndTarget();
      return;
    default:
      return;
  }
}

bool ListView::Tell(const ListStep& step) noexcept {
  if (!node.TellBefore(step)) return false;
  switch (step.kind) {
    case ListChangeKind::Inserted:
      order.Insert(step.at, step.rows);
      break;
    case ListChangeKind::Removed:
      order.Erase(step.at, step.count);
      break;
    default:
      order.Move(step.at, step.count, step.to);
  }
  return node.TellAfter(step);
}

std::size_t ListView::CountRanges(std::span<const PlacedRow> some) noexcept {
  std::size_t count = some.empty() ? 0 : 1;
  for (std::size_t i = 1; i < some.size(); ++i) count += some[i].at != some[i - 1].at + 1;
  return count;
}

std::size_t ListView::CountGaps(std::span<const PlacedRow> some) noexcept {
  std::size_t count = some.empty() ? 0 : 1;
  for (std::size_t i = 1; i < some.size(); ++i) count += some[i].at != some[i - 1].at;
  return count;
}

/// Tells the last range first, so that the places of the others stay right.
bool ListView::TellRanges(ListChangeKind kind) noexcept {
  const std::size_t step = kind == ListChangeKind::Removed ? 1 : 0;
  rows.clear();
  for (const PlacedRow& row : placed) rows.push_back(row.id);
  for (std::size_t end = placed.size(); end > 0;) {
    std::size_t first = end - 1;
    while (first > 0 && placed[first - 1].at + step == placed[first].at) --first;
    const std::size_t count = end - first;
    if (!Tell({kind, placed[first].at, count, 0, std::span(rows).subspan(first, count)})) {
      return false;
    }
    end = first;
  }
  return true;
}

bool ListView::TellRemovals() noexcept {
  if (CountRanges(placed) <= MostRanges()) return TellRanges(ListChangeKind::Removed);
  CopyRest(target);
  asideInTarget = aside;
  return TellTarget();
}

void ListView::CopyRest(std::vector<RowId>& to) const noexcept {
  to.clear();
  std::size_t index = 0;
  auto next = placed.begin();
  order.ForEach([&](std::span<const RowId> ids) {
    for (const RowId id : ids) {
      const bool goes = next != placed.end() && next->at == index++;
      goes ? static_cast<void>(++next) : to.push_back(id);
    }
  });
}

bool ListView::TellInsertions() noexcept {
  if (CountGaps(placed) <= MostRanges()) return TellRanges(ListChangeKind::Inserted);
  rows.resize(order.Size());
  CopyIds(0, rows);
  MergeInto(rows);
  asideInTarget = aside;
  return TellTarget();
}

void ListView::MergeInto(std::span<const RowId> base) noexcept {
  target.clear();
  std::size_t done = 0;
  for (const PlacedRow& row : placed) {
    const auto before = base.subspan(done, row.at - done);
    target.insert(target.end(), before.begin(), before.end());
    target.push_back(row.id);
    done = row.at;
  }
  const auto rest = base.subspan(done);
  target.insert(target.end(), rest.begin(), rest.end());
}

bool ListView::TellTarget() noexcept { return BeginTarget() && EndTarget(); }

/// Begins to show no row. This needs no memory, so nobody has to prepare for it. The rows that go
/// are those of the list, which may be more than the view has shown.
void ListView::TakeNothing(const ListStep& step) noexcept {
  target.clear();
  asideInTarget = 0;
  whole = step;
  isTargetOpen = order.Size() != 0 || node.IsTelling();
  if (isTargetOpen) node.TellBefore(whole);
}

/// When the list lets go of all rows, the change that the view is telling is cut short for the
/// rest. So a view that is telling always tells the target.
bool ListView::BeginTarget() noexcept {
  isTargetOpen = !IsTarget();
  if (!isTargetOpen) return true;
  CompareWithTarget();
  const bool isSame = come.empty() && gone.empty();
  whole = {};
  whole.kind = isSame ? ListChangeKind::Reordered : ListChangeKind::Reset;
  whole.count = target.size();
  whole.rows = target;
  whole.gone = gone;
  whole.come = come;
  return node.TellBefore(whole);
}

bool ListView::EndTarget() noexcept {
  aside = asideInTarget;
  if (!isTargetOpen) return true;
  isTargetOpen = false;
  order.Assign(target);
  return node.TellAfter(whole);
}

bool ListView::IsTarget() const noexcept {
  if (order.Size() != target.size()) return false;
  bool isSame = true;
  auto next = target.begin();
  order.ForEach([&](std::span<const RowId> ids) {
    isSame = isSame && std::equal(ids.begin(), ids.end(), next);
    next += static_cast<std::ptrdiff_t>(ids.size());
  });
  return isSame;
}

/// Finds the rows that go and those that come when the target takes the place of the order.
void ListView::CompareWithTarget() noexcept {
  Mark(target);
  come.clear();
  gone.clear();
  order.ForEach([this](std::span<const RowId> ids) {
    std::ranges::copy_if(ids, std::back_inserter(gone), [&](RowId id) { return !IsMarked(id); });
  });
  std::ranges::copy_if(target, std::back_inserter(come),
                       [&](RowId id) { return !order.Contains(id); });
}

}  // namespace DataBinding::details

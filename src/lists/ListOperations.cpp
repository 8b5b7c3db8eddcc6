// SPDX-License-Identifier: Apache-2.0
// This file plans the operations of a list, except for Assign (ListPlanner.cpp).

#include <algorithm>
#include <utility>

#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/lists/details/ListEngine.h"
#include "ListOperation.h"
#include "ListPlanner.h"
#include "ListTexts.h"

namespace DataBinding::details {

namespace {

/// Returns the ids that are in an order, in that order, each once.
std::vector<RowId> InOrder(const RowOrder& order, std::span<const RowId> ids) {
  std::vector<std::pair<std::size_t, RowId>> places;
  places.reserve(ids.size());
  for (const RowId id : ids) {
    if (order.Contains(id)) places.emplace_back(order.IndexOf(id), id);
  }
  std::ranges::sort(places);
  std::vector<RowId> sorted;
  sorted.reserve(places.size());
  for (const auto& place : places) {
    if (sorted.empty() || sorted.back() != place.second) sorted.push_back(place.second);
  }
  return sorted;
}

bool AreWithin(const RowOrder& order, std::size_t at, std::size_t count) {
  return at <= order.Size() && count <= order.Size() - at;
}

/// Adds a step for each run of rows that stand side by side. The last run goes first, so that the
/// places of the others hold.
void AddRemovals(ListOperation& operation, const RowOrder& order, std::span<const RowId> sorted) {
  while (!sorted.empty()) {
    std::size_t first = sorted.size() - 1;
    std::size_t at = order.IndexOf(sorted[first]);
    for (; first > 0 && order.IndexOf(sorted[first - 1]) + 1 == at; --first) --at;
    operation.AddStep(ListChangeKind::Removed, at, sorted.subspan(first));
    sorted = sorted.first(first);
  }
}

}  // namespace

std::vector<RowId> ListEngine::IdsFrom(std::size_t at, std::size_t count) const {
  std::vector<RowId> ids(count);
  present.order.CopyIds(at, ids);
  return ids;
}

void ListEngine::VisitComing(const RowEdit& visit) {
  const State& state = Planning();
  const RowReader rows = PlanningReader();
  state.order.ForEach([&](std::span<const RowId> ids) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): the function takes it as constant
    for (const RowId id : ids) visit(const_cast<void*>(rows.Row(id)));
  });
}

/// Returns where, in the state to come, the row stands that is at an index now. Of rows that go
/// until then, the next one that stays counts.
std::size_t ListEngine::PlaceBefore(const State& state, std::size_t at) const noexcept {
  if (&state == &present) return at;
  while (at < present.order.Size() && !state.order.Contains(present.order.At(at))) ++at;
  return at < present.order.Size() ? state.order.IndexOf(present.order.At(at)) : state.order.Size();
}

/// Tells whether a row that an operation adds has the key of another row.
bool ListEngine::HasDouble(const State& state, const ListOperation& operation) const {
  if (keyBit == 0) return false;
  const RowReader rows = PlanningReader();
  const auto isTaken = [&](RowId id) {
    return state.keys.Find(storage.Table().key(rows.Row(id)), rows) != KeyTable::none;
  };
  if (std::ranges::any_of(operation.Added(), isTaken)) return true;
  if (operation.Added().size() < 2) return false;
  KeyTable among;
  among.Reserve(operation.Added().size(), storage.IdsBelow(), rows);
  return !std::ranges::all_of(operation.Added(), [&](RowId id) { return among.Insert(id, rows); });
}

SetResult ListEngine::Assign(const RowArray& rows) {
  if (isPlanning) return IsBeingUpdated(node);
  auto operation = NewOperation();
  State& state = Planning();
  ListPlanner(*this, state, *operation).Assign(rows);
  return Submit(std::move(operation));
}

SetResult ListEngine::Insert(std::size_t at, const RowArray& rows) {
  if (isPlanning) return IsBeingUpdated(node);
  if (at > present.order.Size()) return NoSuchPlace(node, at, 0);
  if (rows.count == 0) return {};
  State& state = Planning();
  auto operation = NewOperation();
  operation->ReserveRows(rows.count, 0);
  for (std::size_t i = 0; i < rows.count; ++i) operation->AddRow(rows[i]);
  operation->makesDoubles = HasDouble(state, *operation);
  operation->AddStep(ListChangeKind::Inserted, PlaceBefore(state, at), operation->Added());
  return Submit(std::move(operation));
}

SetResult ListEngine::Remove(std::size_t at, std::size_t count) {
  if (isPlanning) return IsBeingUpdated(node);
  if (!AreWithin(present.order, at, count)) return NoSuchPlace(node, at, count);
  if (count == 0) return {};
  const State& state = Planning();
  const std::vector<RowId> ids = IdsFrom(at, count);
  auto operation = NewOperation();
  if (&state == &present) {
    operation->AddStep(ListChangeKind::Removed, at, ids);
  } else {
    AddRemovals(*operation, state.order, InOrder(state.order, ids));
  }
  return Submit(std::move(operation));
}

SetResult ListEngine::RemoveKey(const void* key) {
  if (isPlanning) return IsBeingUpdated(node);
  const State& state = Planning();
  const RowId found = FirstOf(state, key, PlanningReader());
  if (found == KeyTable::none) return NoSuchKey(node, storage.Table(), key);
  auto operation = NewOperation();
  operation->AddStep(ListChangeKind::Removed, state.order.IndexOf(found), {&found, 1});
  return Submit(std::move(operation));
}

SetResult ListEngine::Move(std::size_t from, std::size_t count, std::size_t to) {
  if (isPlanning) return IsBeingUpdated(node);
  if (!AreWithin(present.order, from, count)) return NoSuchPlace(node, from, count);
  if (to > present.order.Size() - count) return NoSuchPlace(node, to, count);
  if (count == 0 || from == to) return {};
  const State& state = Planning();
  const std::vector<RowId> ids = IdsFrom(from, count);
  auto operation = NewOperation();
  if (&state == &present) {
    operation->AddStep(ListChangeKind::Moved, from, ids, to);
  } else {
    std::size_t next = to < from ? to : to + count;
    while (next >= from && next < from + count) ++next;
    ListPlanner(*this, state, *operation).MoveBefore(ids, PlaceBefore(state, next));
  }
  return Submit(std::move(operation));
}

SetResult ListEngine::UpdateAt(std::size_t index, const RowEdit& edit) {
  if (index >= present.order.Size()) return NoSuchPlace(node, index, 1);
  const RowId row = present.order.At(index);
  return Update({&row, 1}, edit);
}

SetResult ListEngine::UpdateKeys(std::span<const void* const> keys, const RowEdit& edit) {
  if (isPlanning) return IsBeingUpdated(node);
  const State& state = Planning();
  const auto find = [&](const void* key) { return FirstOf(state, key, PlanningReader()); };
  if (keys.size() == 1) {
    const RowId row = find(keys.front());
    if (row == KeyTable::none) return NoSuchKey(node, storage.Table(), keys.front());
    return Update({&row, 1}, edit);
  }
  std::vector<RowId> rows;
  rows.reserve(keys.size());
  for (const void* const key : keys) {
    rows.push_back(find(key));
    if (rows.back() == KeyTable::none) return NoSuchKey(node, storage.Table(), key);
  }
  return Update(rows, edit);
}

SetResult ListEngine::Update(std::span<const RowId> rows, const RowEdit& edit) {
  if (isPlanning) return IsBeingUpdated(node);
  const State& state = Planning();
  const auto isThere = [&](RowId row) { return state.order.Contains(row); };
  if (!std::ranges::all_of(rows, isThere)) return RowIsGone(node);
  std::vector<RowId> sorted;
  if (rows.size() > 1) rows = sorted = InOrder(state.order, rows);
  auto operation = NewOperation();
  SetResult refused = PlanChanges(*operation, state, rows, edit);
  if (!refused.IsAccepted() || edit.Purpose() == RowEdit::Aim::Check) return refused;
  operation->AddChanges();
  return Submit(std::move(operation));
}

SetResult ListEngine::PlanChanges(ListOperation& operation, const State& state,
                                  std::span<const RowId> rows, const RowEdit& edit) {
  const ScopedValue planning(isPlanning, true);
  operation.ReserveRows(0, rows.size());
  for (const RowId row : rows) {
    SetResult result = PlanChange(operation, row, edit);
    if (!result.IsAccepted()) return result;
  }
  return ReasonAgainstKeys(state, operation);
}

SetResult ListEngine::PlanChange(ListOperation& operation, RowId row, const RowEdit& edit) {
  const void* const before = PlanningReader().Row(row);
  const RowId other = others.Copy(before);
  operation.AddChange(row, other);
  SetResult result = edit(others.Row(other));
  if (!result.IsAccepted()) return result;
  const std::uint64_t differing = storage.Table().differing(before, others.Row(other));
  if (differing == 0) operation.DropLastChange();
  operation.AddFields(differing);
  const bool isAsked = differing != 0 && edit.Purpose() != RowEdit::Aim::PutBack;
  return isAsked ? CheckRow(others.Row(other), differing) : SetResult();
}

SetResult ListEngine::CheckRow(const void* row, std::uint64_t fields) const {
  for (const RowField& field : storage.Table().fields) {
    if ((fields & RowTable::BitOf(field.number)) == 0) continue;
    const VtrString reason = field.reasonAgainst(field, row);
    if (!reason.IsEmpty()) return RefusedCell(node, field, PropertyError::Refused, reason);
  }
  return {};
}

/// Refuses a new key that another row has or gets. Rows of one operation may exchange their keys.
SetResult ListEngine::ReasonAgainstKeys(const State& state, const ListOperation& operation) const {
  const RowTable& table = storage.Table();
  if ((operation.Fields() & keyBit) == 0) return {};
  const RowReader now = PlanningReader();
  const RowReader then{&others};
  std::vector<RowId> changing;
  KeyTable wanted;
  wanted.Reserve(operation.Changed().size(), others.IdsBelow(), then);
  wanted.AllowDoubles(others.IdsBelow());
  for (std::size_t i = 0; i < operation.Changed().size(); ++i) {
    const RowId row = operation.Changed()[i];
    const RowId other = operation.Others()[i];
    if (table.areKeysEqual(table.key(now.Row(row)), table.key(then.Row(other)))) continue;
    changing.push_back(row);
    wanted.Insert(other, then);
  }
  std::ranges::sort(changing);
  const auto refuse = [&](const void* key) {
    const auto field = std::ranges::find_if(table.fields, &RowField::isKey);
    return RefusedCell(node, *field, PropertyError::Refused,
                       VtrString().Format(L"another row has the key %s", table.keyText(key)));
  };
  for (const RowId other : operation.Others()) {
    const void* const key = table.key(then.Row(other));
    const RowId taker = wanted.Find(key, then);
    if (taker == KeyTable::none) continue;
    if (wanted.Next(taker) != KeyTable::none) return refuse(key);
    for (RowId id = state.keys.Find(key, now); id != KeyTable::none; id = state.keys.Next(id)) {
      if (!std::ranges::binary_search(changing, id)) return refuse(key);
    }
  }
  return {};
}

}  // namespace DataBinding::details

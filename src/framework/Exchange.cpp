// SPDX-License-Identifier: Apache-2.0
// This file holds how another list takes the place of the one that a bind shows.

#include "Exchange.h"

#include <algorithm>

namespace DataBinding::details {

namespace {

/// A run of rows that stand side by side: the next one begins where `belongs` is over.
template <class Belongs>
std::size_t EndOfRun(std::size_t first, std::size_t size, Belongs belongs) {
  while (first < size && belongs(first)) ++first;
  return first;
}

bool AreRowsAlike(const AnyList& one, const AnyList& other) {
  const RowTable* const first = one.Table();
  const RowTable* const second = other.Table();
  return first != nullptr && second != nullptr && AreSameType(*first->type, *second->type);
}

}  // namespace

/// The turn in which another list is shown. It is taken in the family of the list that is shown,
/// and in it, in the family of the wanted one.
class BoundRows::ShowTurn final : public ListTurn {
 public:
  ShowTurn(BoundRows& itsRows, bool isSecondFamily)
      : rows(itsRows.AsWeakPtr()), owner(&itsRows), isSecond(isSecondFamily) {}
  ShowTurn(const ShowTurn&) = delete;
  ShowTurn& operator=(const ShowTurn&) = delete;
  ~ShowTurn() override = default;

  void Run() override {
    if (!rows) return;
    rows->isTurnWaiting = false;
    isSecond ? rows->ShowWanted() : rows->TakeTurn(true);
  }
  [[nodiscard]] const void* Owner() const noexcept override { return owner; }

 private:
  WeakPtr<BoundRows> rows;
  const void* owner;
  bool isSecond;
};

void BoundRows::Show(AnyList* newList) {
  wanted = newList;
  if (wanted == nullptr) return LetGo();
  if (!isTurnWaiting) TakeTurn(false);
}

/// Waits for the family of the list that is shown, and then for that of the wanted one.
void BoundRows::TakeTurn(bool hasFirst) {
  if (wanted == nullptr || wanted == List()) return;
  const auto turns = hasFirst ? wanted->Turns() : Turns();
  if (hasFirst && turns == Turns()) return ShowWanted();
  const auto self = AsWeakPtr();
  auto turn = std::make_unique<ShowTurn>(*this, hasFirst);
  turns->Reserve();
  isTurnWaiting = turns->IsTelling();
  turns->Take(std::move(turn));
}

void BoundRows::ShowWanted() {
  const auto self = AsWeakPtr();
  while (self && wanted != nullptr && wanted != List()) {
    if (order.Size() != 0 && !AreRowsAlike(*List(), *wanted)) {
      RemoveAll();  // as long as the bind knows their type
      continue;
    }
    wanted->AddDependent(Other());
    Other().list = wanted;
    try {
      Exchange exchange(*this);
      isSecond = !isSecond;
      exchange.Run();
    } catch (...) {  // the plan; nothing has changed
      Other().Leave();
      throw;
    }
    if (!self) return;
    Other().Leave();
    underWay = 0;
  }
}

BoundRows::Exchange::Exchange(BoundRows& itsRows) : rows(itsRows), next(*itsRows.wanted) {
  rows.order.ForEach(
      [this](std::span<const RowId> ids) { before.insert(before.end(), ids.begin(), ids.end()); });
  comes.reserve(next.Size());
  for (std::size_t i = 0; i < next.Size(); ++i) comes.push_back(next.At(i));
  stays.resize(rows.places.size());
  after.assign(comes.size(), none);
  MatchRows();
  FindRuns();
  added.reserve(comes.size());
  const ListPlan plan = Plan();
  rows.Reserve(plan, false, rows.Other());
  rows.underWay = plan.insertions;
}

/// Finds for each row of the new list the row of the same key. Of several rows of a key, the first
/// one meets the first one.
void BoundRows::Exchange::MatchRows() {
  const RowTable* const table = next.Table();
  if (before.empty() || table->key == nullptr) return;
  std::unordered_multimap<std::size_t, RowId> byKey;
  for (auto id = before.rbegin(); id != before.rend(); ++id) {
    byKey.emplace(table->hashOfKey(table->key(rows.RowOf(*id))), *id);
  }
  for (std::size_t i = 0; i < comes.size(); ++i) {
    const void* const row = next.RowOf(comes[i]);
    const void* const key = table->key(row);
    const auto [first, end] = byKey.equal_range(table->hashOfKey(key));
    const auto found = std::find_if(first, end, [&](const auto& entry) {
      return table->areKeysEqual(key, table->key(rows.RowOf(entry.second)));
    });
    if (found == end) continue;
    const RowId own = after[i] = found->second;
    byKey.erase(found);
    stays[own] = true;
    kept.push_back(own);
    matches.push_back({own, comes[i]});
    const void* const content = rows.RowOf(own);
    const std::uint64_t differing = table->differing(content, row);
    if (differing == 0) continue;
    fields |= differing;
    changed.push_back(own);
    contents.push_back(row);
    formerContents.push_back(content);
  }
}

void BoundRows::Exchange::FindRuns() {
  std::size_t found = 0;
  bool isInRun = false;
  for (const RowId id : before) {
    if (!stays[id]) {
      removed.push_back(id);
      runs += isInRun ? 0 : 1;
    } else {
      isOrderKept = isOrderKept && kept[found++] == id;
    }
    isInRun = !stays[id];
  }
  isInRun = false;
  for (const RowId id : after) {
    runs += id == none && !isInRun ? 1 : 0;
    isInRun = id == none;
  }
}

ListPlan BoundRows::Exchange::Plan() const noexcept {
  ListPlan plan;
  plan.insertions = after.size() + kept.size() + changed.size();
  plan.idsBelow = next.IdsBelow();
  plan.mostRows = before.size() + after.size();
  plan.mostChanged = plan.mostRows;
  plan.changes = changed.size();
  return plan;
}

void BoundRows::Exchange::GiveIds() noexcept {
  for (const Match& match : matches) {
    rows.places[match.own] = {match.theirs, rows.isSecond};
    rows.Shown().ids[match.theirs] = match.own;
  }
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after[i] != none) continue;
    after[i] = rows.NewId(comes[i], rows.isSecond);
    added.push_back(after[i]);
  }
}

/// The rows that only the former list has are told as going because of it, and may come again.
void BoundRows::Exchange::Run() noexcept {
  const auto self = rows.AsWeakPtr();
  rows.isSourceGoing = true;
  if (TellChanged()) {
    const std::size_t most = std::max<std::size_t>(64, before.size() / 4);
    if (runs > most) {
      static_cast<void>(TellReset());
    } else {
      static_cast<void>(TellRemoved() && TellReordered() && TellInserted());
    }
  }
  if (self) rows.isSourceGoing = false;
}

bool BoundRows::Exchange::TellChanged() noexcept {
  ListStep step;
  step.kind = ListChangeKind::Changed;
  step.count = changed.size();
  step.rows = changed;
  step.fields = fields;
  step.others = contents;
  if (!changed.empty() && !rows.node.TellBefore(step)) return false;
  GiveIds();
  step.others = formerContents;
  return changed.empty() || rows.node.TellAfter(step);
}

/// Removes the last run first.
bool BoundRows::Exchange::TellRemoved() noexcept {
  std::size_t left = removed.size();
  for (std::size_t end = before.size(); end > 0;) {
    std::size_t first = end;
    while (first > 0 && !stays[before[first - 1]]) --first;
    if (first == end) {
      --end;
      continue;
    }
    left -= end - first;
    ListStep step;
    step.kind = ListChangeKind::Removed;
    step.at = first;
    step.count = end - first;
    step.rows = std::span(removed).subspan(left, step.count);
    if (!rows.Tell(step)) return false;
    end = first;
  }
  return true;
}

bool BoundRows::Exchange::TellReordered() noexcept {
  if (isOrderKept) return true;
  ListStep step;
  step.kind = ListChangeKind::Reordered;
  step.count = kept.size();
  step.rows = kept;
  return rows.Tell(step);
}

bool BoundRows::Exchange::TellInserted() noexcept {
  const auto isOld = [this](std::size_t i) { return after[i] < stays.size() && stays[after[i]]; };
  for (std::size_t at = 0; at < after.size();) {
    const std::size_t first = EndOfRun(at, after.size(), isOld);
    const std::size_t end = EndOfRun(first, after.size(), [&](std::size_t i) { return !isOld(i); });
    if (first < end) {
      ListStep step;
      step.kind = ListChangeKind::Inserted;
      step.at = first;
      step.count = end - first;
      step.rows = std::span(after).subspan(first, step.count);
      if (!rows.Tell(step)) return false;
    }
    at = end;
  }
  return true;
}

bool BoundRows::Exchange::TellReset() noexcept {
  ListStep step;
  step.count = after.size();
  step.rows = after;
  step.gone = removed;
  step.come = added;
  return rows.Tell(step);
}

}  // namespace DataBinding::details

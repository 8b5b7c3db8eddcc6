// SPDX-License-Identifier: Apache-2.0
// This file holds how another list takes the place of the one that a bind shows.

#include "Exchange.h"

#include <algorithm>
#include <compare>

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

/// The hash of a row's key, and the row's place.
struct Hashed {
  std::size_t hash;
  std::size_t at;
  // NOLINTNEXTLINE(modernize-use-nullptr): the linter takes the operator for a null pointer
  friend auto operator<=>(const Hashed&, const Hashed&) = default;
};

template <class KeyAt>
std::vector<Hashed> SortedByHash(const RowTable& table, std::size_t count, KeyAt keyAt) {
  std::vector<Hashed> sorted;
  sorted.reserve(count);
  for (std::size_t at = 0; at < count; ++at) sorted.push_back({table.hashOfKey(keyAt(at)), at});
  std::ranges::sort(sorted);
  return sorted;
}

}  // namespace

/// The turn in which another list is shown. It runs in the family of the list that is shown and in
/// that of the wanted one at once: a turn waits in one of them, and when it runs, another one is
/// taken in the other family within it, or waits there if that family tells a change.
class BoundRows::ShowTurn final : public ListTurn {
 public:
  ShowTurn(BoundRows& itsRows, const ListTurns& itsTurns, bool isInBothFamilies)
      : rows(itsRows.AsWeakPtr()), owner(&itsRows), turns(itsTurns), isInBoth(isInBothFamilies) {}
  ShowTurn(const ShowTurn&) = delete;
  ShowTurn& operator=(const ShowTurn&) = delete;
  ~ShowTurn() override = default;

  void Run() override {
    if (!rows) return;
    rows->isTurnWaiting = false;
    isInBoth ? rows->ShowWanted() : rows->TakeTurn(&turns);
  }
  [[nodiscard]] const void* Owner() const noexcept override { return owner; }

 private:
  WeakPtr<BoundRows> rows;
  const void* owner;
  const ListTurns& turns;  // its queue
  bool isInBoth;
};

void BoundRows::Show(AnyList* newList) {
  wanted = newList;
  wantedLives = newList == nullptr ? WeakReference() : newList->Liveness();
  if (wanted == nullptr) return LetGo();
  if (!isTurnWaiting) TakeTurn(nullptr);
}

/// Takes a turn in a family in which none runs yet; `running` is the one whose turn this is, if
/// any.
void BoundRows::TakeTurn(const ListTurns* running) {
  if (!wantedLives.IsValid()) return LetGo();
  if (wanted == List()) return;
  const auto shown = Turns();
  const auto coming = wanted->Turns();
  const bool isInShown = running == shown.get();
  if (isInShown && shown == coming) return ShowWanted();
  const auto& turns = isInShown ? coming : shown;
  const bool hasOther = isInShown || running == coming.get();
  auto turn = std::make_unique<ShowTurn>(*this, *turns, hasOther && !turns->IsTelling());
  turns->Reserve();
  isTurnWaiting = turns->IsTelling();
  turns->Take(std::move(turn));
}

/// A callback that has yet another list shown takes a turn for that.
void BoundRows::ShowWanted() {
  const auto self = AsWeakPtr();
  const auto lives = wantedLives;
  AnyList* const next = wanted;
  if (order.Size() != 0 && !AreRowsAlike(*List(), *next)) {
    Empty(ListChangeKind::Removed);  // while the type of the rows is known
  }
  if (!self || !lives.IsValid() || wanted != next) return;
  Other().list = next;
  try {
    next->AddDependent(Other());  // a list that has ended is left at once
    if (!self || Other().list == nullptr) return;
    Exchange exchange(*this);
    isSecond = !isSecond;
    exchange.Run();
  } catch (...) {  // the plan; nothing has changed
    Other().Leave();
    underWay = 0;
    throw;
  }
  if (!self) return;
  Other().Leave();
  underWay = 0;
}

BoundRows::Exchange::Exchange(BoundRows& itsRows) : rows(itsRows), next(*itsRows.wanted) {
  rows.order.ForEach(
      [this](std::span<const RowId> ids) { before.insert(before.end(), ids.begin(), ids.end()); });
  comes.reserve(next.Size());
  for (std::size_t i = 0; i < next.Size(); ++i) comes.push_back(next.At(i));
  stays.resize(rows.places.size());
  after.assign(comes.size(), none);
  MatchRows();
  CompareRows();
  FindRuns();
  added.reserve(comes.size());
  Reserve();
}

/// Reserves for the steps, and for what waits in the new list already.
void BoundRows::Exchange::Reserve() {
  ListPlan plan = static_cast<const ListNode&>(next).Pending();
  if (plan.insertions + plan.mostChanged != 0) rows.ReserveSteps(plan.mostRows);
  rows.underWay = after.size() + kept.size() + changed.size();
  plan.mostRows = std::max(plan.mostRows, before.size() + after.size());
  plan.mostChanged = plan.mostRows;
  plan.changes += changed.size();
  rows.Reserve(plan, false, rows.Other());
}

/// Finds for each row of the new list the row of the same key. Of several rows of a key, the first
/// one meets the first one.
void BoundRows::Exchange::MatchRows() {
  const RowTable* const table = next.Table();
  if (before.empty() || table->key == nullptr) return;
  const auto formerKey = [&](std::size_t at) { return table->key(rows.RowOf(before[at])); };
  const auto nextKey = [&](std::size_t at) { return table->key(next.RowOf(comes[at])); };
  const auto formers = SortedByHash(*table, before.size(), formerKey);
  auto first = formers.begin();
  for (const Hashed& row : SortedByHash(*table, comes.size(), nextKey)) {
    const auto isPassed = [&](const Hashed& former) {
      return former.hash < row.hash || stays[before[former.at]];
    };
    first = std::find_if_not(first, formers.end(), isPassed);
    for (auto it = first; it != formers.end() && it->hash == row.hash; ++it) {
      const RowId own = before[it->at];
      if (stays[own] || !table->areKeysEqual(nextKey(row.at), formerKey(it->at))) continue;
      after[row.at] = own;
      stays[own] = true;
      break;
    }
  }
}

/// Finds how the rows that stay differ in the new list.
void BoundRows::Exchange::CompareRows() {
  for (std::size_t i = 0; i < comes.size(); ++i) {
    const RowId own = after[i];
    if (own == none) continue;
    kept.push_back(own);
    matches.push_back({own, comes[i]});
    const void* const row = next.RowOf(comes[i]);
    const void* const content = rows.RowOf(own);
    const std::uint64_t differing = next.Table()->differing(content, row);
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
    const std::size_t count = end - first;
    left -= count;
    const auto run = std::span(removed).subspan(left, count);
    if (!rows.Tell({ListChangeKind::Removed, first, count, 0, run})) return false;
    end = first;
  }
  return true;
}

bool BoundRows::Exchange::TellReordered() noexcept {
  if (isOrderKept) return true;
  return rows.Tell({ListChangeKind::Reordered, 0, kept.size(), 0, kept});
}

bool BoundRows::Exchange::TellInserted() noexcept {
  const auto isOld = [this](std::size_t i) { return after[i] < stays.size() && stays[after[i]]; };
  for (std::size_t at = 0; at < after.size();) {
    const std::size_t first = EndOfRun(at, after.size(), isOld);
    const std::size_t end = EndOfRun(first, after.size(), [&](std::size_t i) { return !isOld(i); });
    const std::size_t count = end - first;
    const auto run = std::span(after).subspan(first, count);
    if (count != 0 && !rows.Tell({ListChangeKind::Inserted, first, count, 0, run})) return false;
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

// SPDX-License-Identifier: Apache-2.0
// This file holds how a bind to a list follows one list. Exchange.cpp holds how another list takes
// its place.

#include "DataBinding/framework/details/BoundRows.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"

namespace DataBinding::details {

namespace {

bool HasAllRows(const ListStep& step) noexcept {
  return step.kind == ListChangeKind::Reset || step.kind == ListChangeKind::Reordered;
}

/// Reserves twice as much as there was, so that many small operations do not each copy all rows.
template <class Element>
void ReserveAhead(std::vector<Element>& array, std::size_t most) {
  if (array.capacity() < most) array.reserve(std::max(most, 2 * array.capacity()));
}

}  // namespace

/// The turn in which the rows are let go of where no change is told.
class BoundRows::EmptyTurn final : public ListTurn {
 public:
  explicit EmptyTurn(BoundRows& itsRows) : rows(itsRows.AsWeakPtr()), owner(&itsRows) {}
  void Run() override {
    if (rows) rows->Empty(ListChangeKind::Removed);
  }
  [[nodiscard]] const void* Owner() const noexcept override { return owner; }

 private:
  WeakPtr<BoundRows> rows;
  const void* owner;
};

BoundRows::BoundRows(ListNode& itsNode)
    : node(itsNode), ownTurns(std::make_shared<ListTurns>(nullptr)) {
  static_cast<void>(AsWeakPtr());
}

BoundRows::~BoundRows() {
  InvalidateWeakPtrs();
  for (Follower& follower : followers) follower.Leave();
}

void BoundRows::Follower::Leave() noexcept {
  if (AnyList* const left = std::exchange(list, nullptr)) left->RemoveDependent(*this);
}

void BoundRows::Clear() noexcept {
  for (Follower& follower : followers) follower.Leave();
  order.Erase(0, order.Size());
}

const void* BoundRows::RowOf(RowId id) const noexcept {
  const Place place = places[id];
  const AnyList* const list = followers[place.isOfSecond ? 1 : 0].list;
  return list == nullptr ? nullptr : list->RowOf(place.id);
}

const std::shared_ptr<ListTurns>& BoundRows::Turns() const noexcept {
  if (List() != nullptr) return List()->Turns();
  return leftTurns != nullptr && leftTurns->IsTelling() ? leftTurns : ownTurns;
}

SetResult BoundRows::UpdateRow(RowId id, const RowEdit& edit) {
  if (id >= places.size() || !order.Contains(id)) {
    return {false, PropertyError::Absent,
            VtrString().Format(L"List \"%s\" has no such row.", node.ListName())};
  }
  const Place place = places[id];
  return followers[place.isOfSecond ? 1 : 0].list->UpdateRow(place.id, edit);
}

void BoundRows::Prepare(const ListPlan& plan, Follower& follower) {
  if (&follower != &Shown()) return;  // the bind leaves this list, or an Exchange reserves
  for (const ListStep& step : plan.steps) {
    Grow(stepRows, step.rows.size());
    Grow(stepGone, step.gone.size());
    Grow(stepCome, step.come.size());
  }
  Reserve(plan, std::ranges::any_of(plan.steps, HasAllRows), follower);
}

/// Reserves what a plan needs, and has the dependents do so. Of its steps only the kinds and the
/// numbers of rows count, which are the same for the bind.
void BoundRows::Reserve(const ListPlan& plan, bool hasAllRows, Follower& follower) {
  const std::size_t come = underWay + plan.insertions + (hasAllRows ? plan.mostRows : 0);
  const std::size_t ids = places.size() + come;
  ReserveAhead(places, ids);
  ReserveAhead(free, ids);
  ReserveAhead(released, ids);
  Grow(leaving, order.Size() + come);
  if (emptying == nullptr) emptying = std::make_unique<EmptyTurn>(*this);
  Grow(stepRows, plan.mostChanged);
  if (follower.ids.size() < plan.idsBelow) follower.ids.resize(plan.idsBelow, none);
  order.Reserve(come, static_cast<RowId>(ids));
  pending = plan;
  pending.insertions = come;
  pending.idsBelow = static_cast<RowId>(ids);
  pending.mostRows = std::max(plan.mostRows, order.Size() + come);
  const ListPlan own = pending;
  pending.steps = {};
  node.PrepareDependents(own);
}

/// Reserves for steps whose numbers of rows are not known.
void BoundRows::ReserveSteps(std::size_t most) {
  for (auto* const ids : {&stepRows, &stepGone, &stepCome}) Grow(*ids, most);
}

/// Makes room in an array to which a step that is being told may refer.
void BoundRows::Grow(std::vector<RowId>& ids, std::size_t most) {
  if (ids.capacity() >= most) return;
  std::vector<RowId> larger;
  larger.reserve(std::max(most, 2 * ids.capacity()));
  larger.assign(ids.begin(), ids.end());
  outgrown.push_back(std::move(ids));
  ids = std::move(larger);
}

/// No step of what is to come concerns more rows than the bind has at some time.
ListPlan BoundRows::Pending() const noexcept {
  ListPlan all = pending;
  all.idsBelow = std::max(all.idsBelow, IdsBelow());
  all.mostChanged = all.mostRows = std::max(all.mostRows, order.Size());
  return all;
}

void BoundRows::AtRest() noexcept {
  if (!Turns()->IsTelling()) {
    ReuseReleased();
    outgrown.clear();
    pending = {};
  }
  node.RestDependents();
}

/// Gives a row of a list an id. It was reserved.
RowId BoundRows::NewId(RowId theirs, bool isOfSecond) noexcept {
  RowId own = static_cast<RowId>(places.size());
  if (free.empty()) {
    places.push_back({theirs, isOfSecond});
  } else {
    own = free.back();
    free.pop_back();
    places[own] = {theirs, isOfSecond};
  }
  followers[isOfSecond ? 1 : 0].ids[theirs] = own;
  return own;
}

void BoundRows::Release(std::span<const RowId> ids) noexcept {
  released.insert(released.end(), ids.begin(), ids.end());
}

void BoundRows::ReuseReleased() noexcept {
  free.insert(free.end(), released.begin(), released.end());
  released.clear();
}

std::span<const RowId> BoundRows::Translate(const Follower& follower, std::span<const RowId> theirs,
                                            std::vector<RowId>& own) noexcept {
  own.clear();
  for (const RowId id : theirs) own.push_back(follower.ids[id]);
  return own;
}

/// Returns a step of the list with the bind's own ids. It stays good until the next one.
ListStep BoundRows::Translated(const ListStep& step) noexcept {
  ListStep own = step;
  own.rows = Translate(Shown(), step.rows, stepRows);
  own.gone = Translate(Shown(), step.gone, stepGone);
  own.come = Translate(Shown(), step.come, stepCome);
  return own;
}

/// Rows that go leave the bind here, and rows that come are told in After. The other changes are
/// told when they happen in the list.
void BoundRows::Before(const ListStep& step) noexcept {
  if (step.kind == ListChangeKind::Inserted) return;
  for (const RowId id : step.come) static_cast<void>(NewId(id, isSecond));
  present = Translated(step);
  step.kind == ListChangeKind::Removed ? Tell(present) : node.TellBefore(present);
}

void BoundRows::After(const ListStep& step) noexcept {
  if (step.kind == ListChangeKind::Removed) return;
  if (step.kind != ListChangeKind::Inserted) {
    present = Translated(step);
    Apply(present);
    node.TellAfter(present);
    return;
  }
  for (const RowId id : step.rows) static_cast<void>(NewId(id, isSecond));
  Tell(Translated(step));
}

/// Tells a step and carries it out. Returns false when the bind has ended, or was emptied, while
/// that was told.
bool BoundRows::Tell(const ListStep& step) noexcept {
  if (!node.TellBefore(step)) return false;
  Apply(step);
  return node.TellAfter(step);
}

void BoundRows::Apply(const ListStep& step) noexcept {
  switch (step.kind) {
    case ListChangeKind::Inserted:
      return order.Insert(step.at, step.rows);
    case ListChangeKind::Removed:
      order.Erase(step.at, step.count);
      return Release(step.rows);
    case ListChangeKind::Moved:
      return order.Move(step.at, step.count, step.to);
    case ListChangeKind::Changed:
      return;
    default:
      order.Assign(step.rows);
      Release(step.gone);
  }
}

/// Where it was the former list of an exchange that has ended, the wanted one is shown anew.
void BoundRows::ListEnds() noexcept {
  const auto self = AsWeakPtr();
  LetGo();
  if (!self || isTurnWaiting || !wantedLives.IsValid()) return;
  try {
    TakeTurn(nullptr);
  } catch (...) {
    ReportFailure(self ? node.ListName() : VtrString(), std::current_exception());
  }
}

/// Lets go of all rows, at once, and then of the lists. Where one of them ends, the rows of both
/// can still be read. Another list waits as long as the family tells the change that this has
/// interrupted.
void BoundRows::LetGo() noexcept {
  const auto self = AsWeakPtr();
  const auto turns = Turns();
  if (turns->IsTelling() || emptying == nullptr) {
    leftTurns = turns;
    Empty(ListChangeKind::Reset);
  } else {
    try {
      turns->Take(std::move(emptying));
    } catch (...) {  // of an operation that has waited
      ReportFailure(self ? node.ListName() : VtrString(), std::current_exception());
    }
  }
  if (self && !turns->IsTelling()) AtRest();
}

/// The dependents need memory for a Removed of all rows, but not for a Reset to none.
void BoundRows::Empty(ListChangeKind kind) noexcept {
  const auto self = AsWeakPtr();
  try {
    if (order.Size() != 0 && kind == ListChangeKind::Removed) node.PrepareDependents(Pending());
  } catch (...) {
    kind = ListChangeKind::Reset;
  }
  RemoveAll(kind);
  if (!self) return;
  for (Follower& follower : followers) follower.Leave();
}

/// A Reset takes the place of the change that is being told, of which the rest hear nothing more.
/// So the Reset is told even where no row is left.
void BoundRows::RemoveAll(ListChangeKind kind) noexcept {
  if (order.Size() == 0 && !node.IsTelling()) return;
  leaving.clear();
  order.ForEach([this](std::span<const RowId> ids) {
    leaving.insert(leaving.end(), ids.begin(), ids.end());
  });
  ListStep step;
  step.kind = kind;
  if (kind == ListChangeKind::Reset) {
    step.gone = leaving;
  } else {
    step.count = leaving.size();
    step.rows = leaving;
  }
  const auto self = AsWeakPtr();
  isSourceGoing = true;
  Tell(step);
  if (self) isSourceGoing = false;
}

}  // namespace DataBinding::details

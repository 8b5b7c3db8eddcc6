// SPDX-License-Identifier: Apache-2.0
// This file holds how a list, view or bind tells its changes to its observers and dependents.

#include <algorithm>
#include <exception>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/details/Cancellation.h"
#include "DataBinding/lists/ListChange.h"
#include "DataBinding/lists/details/ListCore.h"
#include "ListTexts.h"

namespace DataBinding::details {

/// An observer hears the changes from a certain one on. An observer that begins when the first call
/// of a change is over does not hear the second. None hears what another change has interrupted.
class ListNode::Observer {
 public:
  Observer(RepeatingCallback<void(const ListChange&)> callback, std::uint64_t first)
      : call(std::move(callback)), from(first) {}
  void operator()(const ListChange& change) const {
    const bool isPresent = change.Serial() == change.Node().serial;  // an end may have overtaken it
    if (isPresent && change.Serial() >= from) call(change);
  }

 private:
  RepeatingCallback<void(const ListChange&)> call;
  std::uint64_t from;
};

/// An end needs no memory, since both references were taken before.
ListNode::ListNode() {
  static_cast<void>(weak.GetRef());
  static_cast<void>(existence.GetRef());
}

ListNode::~ListNode() = default;

RowId ListNode::FindKey(const void* key) const noexcept {
  const RowTable* const table = Table();
  if (table == nullptr || table->key == nullptr) return noRow;
  for (std::size_t i = 0; i < Size(); ++i) {
    const RowId row = At(i);
    if (table->areKeysEqual(table->key(RowOf(row)), key)) return row;
  }
  return noRow;
}

SetResult ListNode::MoveRows(std::size_t /*from*/, std::size_t /*count*/, std::size_t /*to*/) {
  return CannotMove(*this);
}

/// While the family tells a change, the source may stand otherwise than this node still shows it.
SetResult ListNode::MoveRowsOf(ListNode* source, std::size_t from, std::size_t count,
                               std::size_t to) const {
  const bool canMove = source != nullptr && source->CanMoveRows() && !Turns()->IsTelling();
  return canMove ? source->MoveRows(from, count, to) : CannotMove(*this);
}

/// An observer that begins when the others have been told already is told at once, as long as the
/// node is as it was. A view passes a change of fields on before the list changes, and again after
/// that; in between its rows may be read as they are now, and then there is nothing left to tell.
Subscription ListNode::ObserveChanges(const RepeatingCallback<void(const ListChange&)>& observer) {
  if (!observer) return {};
  Awaken();
  const bool isOver =
      phase == Phase::Between && told->kind == ListChangeKind::Changed && HasNewRows();
  const bool isLate = !isOver && (phase == Phase::BeforeInDependents || phase == Phase::Between);
  const bool hearsThis = isLate || phase == Phase::Before;
  auto added = observers.Add(Observer(observer, hearsThis ? serial : serial + 1));
  if (isLate) CallLate(observer);
  return added;
}

DATABINDING_CATCHES_CANCELLATION void ListNode::CallLate(
    const RepeatingCallback<void(const ListChange&)>& observer) {
  try {
    observer(ListChange(*this, *told, true, serial));
  } catch (...) {
    ReportFailure(ListName(), std::current_exception());
  }
}

void ListNode::AddDependent(ListDependent& dependent) {
  if (hasEnded) return dependent.ListEnds();
  if (Turns()->IsTelling()) dependent.Prepare(Pending());
  dependents.push_back(&dependent);
  if (phase != Phase::Between) return;
  heardBefore = dependents.size();
  dependent.Before(*told);
}

void ListNode::RemoveDependent(ListDependent& dependent) noexcept {
  const auto found = std::ranges::find(dependents, &dependent);
  if (found == dependents.end()) return;
  *found = nullptr;
  if (phase == Phase::Rest) dependents.erase(found);
}

void ListNode::PrepareDependents(const ListPlan& plan) {
  for (ListDependent* const dependent : dependents) {
    if (dependent != nullptr) dependent->Prepare(plan);
  }
}

void ListNode::RestDependents() noexcept {
  for (ListDependent* const dependent : dependents) {
    if (dependent != nullptr) dependent->AtRest();
  }
}

void ListNode::CopyIds(std::size_t at, std::span<RowId> to) const noexcept {
  for (RowId& id : to) id = At(at++);
}

bool ListNode::TellBefore(const ListStep& step) noexcept {
  const auto alive = weak.GetRef();
  std::erase(dependents, nullptr);
  const auto isTold = [this, alive, own = ++serial] { return alive.IsValid() && serial == own; };
  told = &step;
  phase = Phase::Before;
  CallObservers(step, true);
  if (!isTold()) return false;
  phase = Phase::BeforeInDependents;
  for (heardBefore = 0; heardBefore < dependents.size();) {
    ListDependent* const dependent = dependents[heardBefore++];
    if (dependent != nullptr) dependent->Before(step);
    if (!isTold()) return false;
  }
  phase = Phase::Between;
  return true;
}

bool ListNode::TellAfter(const ListStep& step) noexcept {
  const auto alive = weak.GetRef();
  const auto isTold = [this, alive, own = serial] { return alive.IsValid() && serial == own; };
  phase = Phase::After;
  for (std::size_t i = 0; i < heardBefore; ++i) {
    if (dependents[i] != nullptr) dependents[i]->After(step);
    if (!isTold()) return false;
  }
  CallObservers(step, false);
  if (!isTold()) return false;
  phase = Phase::Rest;
  std::erase(dependents, nullptr);
  return true;
}

/// Calls the observers. The ones that begin meanwhile are called, too, if they are told of this
/// change at all.
DATABINDING_CATCHES_CANCELLATION void ListNode::CallObservers(const ListStep& step,
                                                              bool isBefore) noexcept {
  const ListChange change(*this, step, isBefore, serial);
  CallbackWalk walk(observers.Core());
  for (bool isOver = false; !isOver;) {
    try {
      CallbackList<ListChange>::CallRest(walk, change);
      isOver = walk.IsListGone() || !isBefore || !walk.TakeNewcomers();
    } catch (...) {
      ReportFailure(walk.IsListGone() ? VtrString() : ListName(), std::current_exception());
    }
  }
}

void ListNode::TellEnd(void (*empty)(ListNode& self)) noexcept {
  if (std::exchange(hasEnded, true)) return;
  const auto turns = Turns();
  const bool isOutermost = turns->BeginEnd();
  turns->Drop(this);
  TellEndNow(empty);
  turns->Drop(this);
  if (isOutermost) turns->FinishEnd();
}

void ListNode::TellEndNow(void (*empty)(ListNode& self)) noexcept {
  ListStep step;
  step.kind = ListChangeKind::Reset;
  weak.Invalidate();
  const auto alive = existence.GetRef();
  ++serial;
  told = &step;
  phase = Phase::Before;
  CallObservers(step, true);
  if (!alive.IsValid()) return;
  phase = Phase::After;
  LeaveDependents();
  if (!alive.IsValid()) return;
  empty(*this);
  CallObservers(step, false);
  if (alive.IsValid()) LeaveDependents();  // an observer may have added one
}

void ListNode::LeaveDependents() noexcept {
  const auto alive = existence.GetRef();
  for (std::size_t i = 0; alive.IsValid() && i < dependents.size(); ++i) {
    if (auto* const dependent = std::exchange(dependents[i], nullptr)) dependent->ListEnds();
  }
}

}  // namespace DataBinding::details

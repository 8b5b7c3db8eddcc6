// SPDX-License-Identifier: Apache-2.0
// This file holds how operations are submitted and carried out. ListOperations.cpp plans them.

#include "DataBinding/lists/details/ListEngine.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "ListOperation.h"
#include "ListTexts.h"

namespace DataBinding::details {

ListEngine::ListEngine(ListNode& itsNode, const RowTable& table)
    : node(itsNode), turns(std::make_shared<ListTurns>(&itsNode)), storage(table), others(table) {
  for (const RowField& field : table.fields) {
    if (field.isKey) keyBit = RowTable::BitOf(field.number);
  }
}

ListEngine::~ListEngine() {
  turns->ForgetRoot();
  if (running != nullptr) running->Abandon();
  if (spare != nullptr) spare->Abandon();
}

void ListEngine::End() noexcept {
  present.order.Erase(0, present.order.Size());
  present.keys = KeyTable();
}

void ListEngine::EndRows() noexcept {
  gone.clear();
  storage.Clear(0);
}

RowId ListEngine::Find(const void* key) const noexcept { return FirstOf(present, key, Reader()); }

/// Returns that one of the rows of a key which stands first in the list.
RowId ListEngine::FirstOf(const State& state, const void* key,
                          const RowReader& rows) const noexcept {
  RowId first = state.keys.Find(key, rows);
  for (RowId id = state.keys.Next(first); id != KeyTable::none; id = state.keys.Next(id)) {
    if (state.order.IndexOf(id) < state.order.IndexOf(first)) first = id;
  }
  return first;
}

ListPlan ListEngine::Pending() const noexcept {
  return {{},
          pending.insertions,
          storage.IdsBelow(),
          present.order.Size() + pending.insertions,
          std::max({mostChanged, pending.insertions, pending.removals}),
          pending.changes};
}

ListEngine::State& ListEngine::Planning() {
  Foresee();
  return coming == nullptr ? present : coming->state;
}

RowReader ListEngine::PlanningReader() const noexcept {
  return {&storage, coming == nullptr ? nullptr : &coming->rows};
}

/// Makes the state to come, where an operation has to wait and there is none yet.
void ListEngine::Foresee() {
  if (!turns->IsTelling() || coming != nullptr) return;
  auto made = std::make_unique<Coming>();
  made->state.order.Assign(IdsFrom(0, present.order.Size()));
  made->state.keys = present.keys;
  made->rows.resize(storage.IdsBelow());
  ReserveState(made->state, pending, false, Reader());
  coming = std::move(made);
  if (running == nullptr) return;
  for (const ListStep& step : running->Rest()) ApplyToComing(step);
}

ListEngine::OperationPtr ListEngine::NewOperation() {
  if (spare != nullptr) return std::move(spare);
  return OperationPtr(new ListOperation(*this));
}

ListEngine::Needs ListEngine::NeedsOf(const ListStep& step) const noexcept {
  switch (step.kind) {
    case ListChangeKind::Inserted:
      return {step.count, step.count, 0, 0};
    case ListChangeKind::Removed:
      return {0, 0, step.count, 0};
    case ListChangeKind::Changed:
      return {0, (step.fields & keyBit) == 0 ? 0 : step.count, 0, step.count};
    default:
      return {step.count, step.come.size(), step.gone.size(), 0};
  }
}

SetResult ListEngine::Submit(OperationPtr operation) {
  operation->Finish();
  if (operation->Steps().empty()) return {};
  Needs all = pending;
  for (const ListStep& step : operation->Steps()) {
    const Needs needs = NeedsOf(step);
    all.insertions += needs.insertions;
    all.keyInsertions += needs.keyInsertions;
    all.removals += needs.removals;
    all.changes += needs.changes;
  }
  Reserve(*operation, all);

  pending = all;
  hasChanged = true;
  hasDoubles = hasDoubles || operation->makesDoubles;
  operation->Submitted();
  SetResult result;
  result.waits = turns->IsTelling();
  result.changed = !result.waits;
  if (coming != nullptr) {
    for (const ListStep& step : operation->Steps()) ApplyToComing(step);
  }
  turns->Take(std::move(operation));  // the list may be gone after it
  return result;
}

/// Does all that may fail.
void ListEngine::Reserve(const ListOperation& operation, const Needs& all) {
  turns->Reserve();
  ReserveState(present, all, operation.makesDoubles, Reader());
  if (coming != nullptr) {
    coming->rows.resize(storage.IdsBelow());
    ReserveState(coming->state, all, operation.makesDoubles, PlanningReader());
  }
  const std::size_t removals = gone.size() + all.removals;
  if (gone.capacity() < removals) gone.reserve(std::max(removals, 2 * gone.capacity()));
  mostChanged = std::max(mostChanged, operation.Changed().size());
  PrepareNode(operation.Steps(), all);
}

void ListEngine::PrepareNode(std::span<const ListStep> steps, const Needs& all) {
  node.PrepareDependents({steps, all.insertions, storage.IdsBelow(),
                          present.order.Size() + all.insertions, mostChanged, all.changes});
}

void ListEngine::PrepareChange(const ListStep& step) {
  Needs all = pending;
  all.changes += step.count;
  mostChanged = std::max(mostChanged, step.count);
  PrepareNode({&step, 1}, all);
  pending = all;
  hasChanged = true;
}

void ListEngine::TellChange(const ListStep& step) noexcept {
  if (!node.TellBefore(step) || !node.TellAfter(step)) return;
  pending.changes -= step.count;
}

void ListEngine::ReserveState(State& state, const Needs& needs, bool withDoubles,
                              const RowReader& rows) {
  if (needs.insertions != 0) state.order.Reserve(needs.insertions, storage.IdsBelow());
  if (keyBit == 0) return;
  if (needs.keyInsertions != 0) state.keys.Reserve(needs.keyInsertions, storage.IdsBelow(), rows);
  if (withDoubles) state.keys.AllowDoubles(storage.IdsBelow());
}

bool ListEngine::Tell(const ListStep& step) noexcept {
  if (!node.TellBefore(step)) return false;
  Apply(step);
  if (!node.TellAfter(step)) return false;
  const Needs needs = NeedsOf(step);  // until now views had to make the step
  pending.insertions -= needs.insertions;
  pending.keyInsertions -= needs.keyInsertions;
  pending.removals -= needs.removals;
  pending.changes -= needs.changes;
  return true;
}

void ListEngine::Apply(const ListStep& step) noexcept {
  if (step.kind == ListChangeKind::Changed) {
    ApplyChanges(present, step, Reader(), [&](std::size_t i) {
      // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): the other row is the engine's own
      storage.Table().exchange(storage.Row(step.rows[i]), const_cast<void*>(step.others[i]));
      if (coming == nullptr) return;
      auto& foreseen = coming->rows[step.rows[i]];
      if (foreseen == step.others[i]) foreseen = nullptr;
    });
  } else {
    ApplyOrder(present, step, Reader());
  }
  const auto removed = step.kind == ListChangeKind::Removed ? step.rows : step.gone;
  gone.insert(gone.end(), removed.begin(), removed.end());
  running->StepIsDone();
}

void ListEngine::ApplyToComing(const ListStep& step) noexcept {
  if (step.kind != ListChangeKind::Changed) {
    return ApplyOrder(coming->state, step, PlanningReader());
  }
  ApplyChanges(coming->state, step, PlanningReader(),
               [&](std::size_t i) { coming->rows[step.rows[i]] = step.others[i]; });
}

template <class Change>
void ListEngine::ApplyChanges(State& state, const ListStep& step, const RowReader& rows,
                              Change change) noexcept {
  const bool areKeysChanged = (step.fields & keyBit) != 0;
  if (areKeysChanged) {
    for (const RowId row : step.rows) state.keys.Erase(row, rows);
  }
  for (std::size_t i = 0; i < step.rows.size(); ++i) change(i);
  if (areKeysChanged) {
    for (const RowId row : step.rows) state.keys.Insert(row, rows);
  }
}

void ListEngine::ApplyOrder(State& state, const ListStep& step,
                            const RowReader& rows) const noexcept {
  std::span<const RowId> removed = step.gone;
  std::span<const RowId> inserted = step.come;
  switch (step.kind) {
    case ListChangeKind::Inserted:
      inserted = step.rows;
      state.order.Insert(step.at, step.rows);
      break;
    case ListChangeKind::Removed:
      removed = step.rows;
      state.order.Erase(step.at, step.count);
      break;
    case ListChangeKind::Moved:
      state.order.Move(step.at, step.count, step.to);
      break;
    default:
      state.order.Assign(step.rows);
      break;
  }
  if (keyBit == 0) return;
  for (const RowId row : removed) state.keys.Erase(row, rows);
  for (const RowId row : inserted) state.keys.Insert(row, rows);
}

/// A function that plans an Update may read a view that sleeps, which is an operation of the
/// family. The operation that is being planned still needs its rows then, and nothing has changed
/// yet.
bool ListEngine::Rest() {
  coming = nullptr;
  if (isPlanning) return false;
  for (const RowId row : gone) storage.Remove(row);
  if (gone.size() > mostKept) gone = {};
  gone.clear();
  others.Clear(others.IdsBelow() > mostKept ? 0 : 1);
  pending = {};
  present.order.Reserve(0, 0);  // gives back what nobody has used
  mostChanged = 0;
  const bool wasChanged = std::exchange(hasChanged, false);
  // The failure handler may end the list, so it comes last.
  if (std::exchange(hasDoubles, false) && !std::exchange(areDoublesReported, true)) ReportDoubles();
  return wasChanged;
}

void ListEngine::ReportDoubles() const {
  constexpr auto* text = "Two rows of a list have the same key. Both stay.";
  ReportFailure(node.ListName(), std::make_exception_ptr(ListFault(text)));
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "ListOperation.h"

namespace DataBinding::details {

RowId ListOperation::AddRow(void* row) noexcept {
  added.push_back(engine->storage.Take(row));
  return added.back();
}

void ListOperation::ReserveRows(std::size_t newRows, std::size_t changes) {
  engine->storage.Reserve(newRows);
  added.reserve(newRows);
  engine->others.Reserve(changes);
  changed.reserve(changes);
  others.reserve(changes);
}

void ListOperation::AddChange(RowId row, RowId other) noexcept {
  changed.push_back(row);
  others.push_back(other);
}

void ListOperation::DropLastChange() noexcept {
  engine->others.Remove(others.back());
  others.pop_back();
  changed.pop_back();
}

void ListOperation::AddStep(ListChangeKind kind, std::size_t at, std::span<const RowId> ofRows,
                            std::size_t to) {
  firstRows.push_back(rows.size());
  rows.insert(rows.end(), ofRows.begin(), ofRows.end());
  ListStep step;
  step.kind = kind;
  step.at = at;
  step.count = ofRows.size();
  step.to = to;
  steps.push_back(step);
}

void ListOperation::AddChanges() {
  if (changed.empty()) return;
  contents.reserve(others.size());
  for (const RowId other : others) contents.push_back(engine->others.Row(other));
  AddStep(ListChangeKind::Changed, 0, changed);
  steps.back().fields = fields;
}

void ListOperation::Finish() noexcept {
  for (std::size_t i = 0; i < steps.size(); ++i) {
    ListStep& step = steps[i];
    step.rows = std::span(rows).subspan(firstRows[i], step.count);
    if (step.kind == ListChangeKind::Changed) step.others = contents;
    if (step.kind != ListChangeKind::Reset) continue;
    step.gone = removed;
    step.come = added;
  }
}

/// The engine, its node and everybody else may end in each of these calls.
void ListOperation::Run() {
  engine->running = this;
  for (const ListStep& step : steps) {
    if (!engine->Tell(step)) return;
  }
  engine->running = nullptr;
}

const void* ListOperation::Owner() const noexcept {
  return engine == nullptr ? nullptr : &engine->node;
}

void ListOperation::Release() noexcept {
  if (engine == nullptr || engine->spare != nullptr || rows.capacity() > mostKept) {
    if (engine != nullptr) Clear();
    delete this;
    return;
  }
  Clear();
  engine->spare.reset(this);
}

void ListOperation::Clear() noexcept {
  if (!isSubmitted) {
    for (const RowId row : added) engine->storage.Remove(row);
    for (const RowId row : others) engine->others.Remove(row);
  }
  isSubmitted = makesDoubles = false;
  fields = done = 0;
  steps.clear();
  firstRows.clear();
  rows.clear();
  added.clear();
  changed.clear();
  others.clear();
  contents.clear();
  removed.clear();
}

}  // namespace DataBinding::details

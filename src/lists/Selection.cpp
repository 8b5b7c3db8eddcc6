// SPDX-License-Identifier: Apache-2.0
// This file holds which rows are chosen. `chosen` holds ids of rows that are in the list, each
// once, and isChosen says the same of each id. While a row goes, from Before to After, a callback
// may choose it once more; then After lets go of it again. `chosen` has room for as many rows as
// are chosen and waited for together, and `leaving` for as many as are chosen, so that nothing is
// allocated when rows come and go but the keys that are waited for.

#include "DataBinding/lists/Selection.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"

namespace DataBinding {

using details::ListStep;

namespace {

/// The rows that go from the list in a step.
std::span<const RowId> GoingIn(const ListStep& step) noexcept {
  if (step.kind == ListChangeKind::Removed) return step.rows;
  return step.kind == ListChangeKind::Reset ? step.gone : std::span<const RowId>();
}

std::span<const RowId> ComingIn(const ListStep& step) noexcept {
  if (step.kind == ListChangeKind::Inserted) return step.rows;
  return step.kind == ListChangeKind::Reset ? step.come : std::span<const RowId>();
}

}  // namespace

AnySelection::AnySelection(AnyList& chosenFrom) : list(&chosenFrom) {
  static_cast<void>(AsWeakPtr());  // so that telling needs no memory
  list->AddDependent(*this);
}

/// Tells that nothing is chosen any more.
AnySelection::~AnySelection() {
  const bool wasEmpty = std::exchange(chosen, {}).empty();
  isChosen.clear();
  if (!wasEmpty) Tell({});
  InvalidateWeakPtrs();
  if (list != nullptr) list->RemoveDependent(*this);
}

std::optional<RowId> AnySelection::CurrentId() const noexcept {
  if (chosen.empty()) return std::nullopt;
  return chosen.back();
}

void AnySelection::MakeRoom(std::span<const RowId> ids) {
  const std::size_t most = chosen.size() + wishes.size() + ids.size();
  chosen.reserve(most);
  leaving.reserve(leaving.size() + most);
  const RowId idsBelow = list == nullptr ? 0 : list->IdsBelow();
  if (idsBelow > isChosen.size()) isChosen.resize(idsBelow);
}

void AnySelection::Mark(RowId id) noexcept {
  chosen.push_back(id);
  isChosen[id] = true;
}

bool AnySelection::Choose(std::span<const RowId> ids) {
  const auto isThere = [this](RowId id) { return list != nullptr && list->Contains(id); };
  const std::vector<RowId> former = chosen;
  std::vector<RowId> found;
  std::ranges::copy_if(ids, std::back_inserter(found), isThere);
  MakeRoom(found);
  for (const RowId id : chosen) isChosen[id] = false;
  chosen.clear();
  wishes.clear();
  for (const RowId id : found) {
    if (!isChosen[id]) Mark(id);
  }
  if (chosen != former) Tell({});
  return found.size() == ids.size();
}

bool AnySelection::Add(RowId id) {
  if (list == nullptr || !list->Contains(id)) return false;
  if (CurrentId() == id) return true;
  MakeRoom({&id, 1});
  std::erase(chosen, id);
  Mark(id);
  Tell({});
  return true;
}

bool AnySelection::Remove(RowId id) {
  if (!Contains(id)) return false;
  isChosen[id] = false;
  std::erase(chosen, id);
  Tell({});
  return true;
}

Subscription AnySelection::Observe(SelectionObserver observer) {
  return observers.Add([observer = std::move(observer)](const News& news) {
    news.isGone ? observer.gone(news.id) : observer.changed();
  });
}

void AnySelection::Prepare(const details::ListPlan& plan) {
  if (plan.idsBelow > isChosen.size()) isChosen.resize(plan.idsBelow);
}

void AnySelection::Before(const ListStep& step) noexcept {
  ++heard;
  LetGo(GoingIn(step), list->IsSourceGoing());
}

void AnySelection::After(const ListStep& step) noexcept {
  const auto self = AsWeakPtr();
  const auto own = ++heard;
  LetGo(GoingIn(step), list->IsSourceGoing());
  if (self && heard == own) TakeWished(ComingIn(step));
}

/// The rows can still be read.
void AnySelection::ListEnds() noexcept {
  const auto self = AsWeakPtr();
  ++heard;
  LetGo(chosen, false);
  if (!self) return;
  list = nullptr;
  chosen.clear();
  isChosen.clear();
}

/// Takes rows, which may be all that are chosen, out of the selection, and tells that they are
/// gone, unless they may come again. Where the list has told something else meanwhile, it has let
/// go of them all, and they cannot be read any more.
void AnySelection::LetGo(std::span<const RowId> going, bool comesAgain) noexcept {
  for (const RowId id : going) {
    if (Contains(id)) isChosen[id] = false;
  }
  const auto kept = std::stable_partition(chosen.begin(), chosen.end(),
                                          [this](RowId id) { return isChosen[id]; });
  if (kept == chosen.end()) return;
  const std::size_t first = leaving.size();
  leaving.insert(leaving.end(), kept, chosen.end());
  chosen.erase(kept, chosen.end());
  const std::size_t end = leaving.size();
  const auto self = AsWeakPtr();
  const auto own = heard;
  for (std::size_t i = first; i < end && heard == own; ++i) {
    if (comesAgain) Attempt([&] { wishes.insert(KeyOf(leaving[i])); });
    if (!comesAgain && !Tell({true, leaving[i]})) return;
  }
  leaving.resize(first);
  wishes.erase(Value());  // the key of rows that have none
  Tell({});
}

/// Chooses the rows whose keys are waited for.
void AnySelection::TakeWished(std::span<const RowId> come) noexcept {
  const std::size_t before = chosen.size();
  for (std::size_t i = 0; i < come.size() && list != nullptr && !wishes.empty(); ++i) {
    Attempt([&] {
      if (wishes.erase(KeyOf(come[i])) != 0) Mark(come[i]);
    });
  }
  if (chosen.size() != before) Tell({});
}

/// Returns the key of a row, or nothing if it has none, or one of a type without a form.
Value AnySelection::KeyOf(RowId id) const {
  const auto* const table = list->Table();
  if (table == nullptr) return {};
  const auto key = std::ranges::find_if(table->fields, &details::RowField::isKey);
  return key == table->fields.end() ? Value() : key->get(list->RowOf(id));
}

std::size_t AnySelection::KeyHash::operator()(const Value& key) const noexcept {
  return key.Visit([](const auto& content) {
    return std::hash<std::remove_cvref_t<decltype(content)>>()(content);
  });
}

/// Runs a step, and reports what it throws.
template <class Step>
void AnySelection::Attempt(Step step) noexcept {
  const auto self = AsWeakPtr();
  try {
    step();
  } catch (...) {
    const bool isNamed = self && list != nullptr;
    details::ReportFailure(isNamed ? list->ListName() : VtrString(), std::current_exception());
  }
}

/// Calls the observers. Returns false when the selection has ended meanwhile.
bool AnySelection::Tell(const News& news) noexcept {
  const auto self = AsWeakPtr();
  details::CallbackWalk walk(observers.Core());
  for (bool isOver = false; !isOver && self;) {
    isOver = true;
    Attempt([&] {
      isOver = false;
      CallbackList<News>::CallRest(walk, news);
      isOver = true;
    });
  }
  return static_cast<bool>(self);
}

}  // namespace DataBinding

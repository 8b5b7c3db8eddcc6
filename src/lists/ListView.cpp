// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/ListView.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/ScopedValue.h"

namespace DataBinding::details {

/// An operation of a view, which waits in the queue of the family. A bind that has changed its
/// source takes its views along into another family. An operation that still waits in the former
/// one follows its view there; where the view has ended meanwhile, it does nothing.
class ListView::Turn final : public ListTurn {
 public:
  Turn(ListView& itsView, RepeatingCallback<void()> itsRun)
      : view(itsView),
        alive(itsView.node.Liveness()),
        queue(itsView.Turns()),
        owner(&itsView.node),
        run(std::move(itsRun)) {}
  void Run() override {
    if (!alive.IsValid()) return;
    queue == view.Turns() ? run() : view.TakeTurn(std::move(run));
  }
  [[nodiscard]] const void* Owner() const noexcept override { return owner; }

 private:
  ListView& view;
  WeakReference alive;
  std::shared_ptr<ListTurns> queue;
  const void* owner;
  RepeatingCallback<void()> run;
};

ListView::ListView(ListNode& itsNode, ListNode& itsSource, void (*emptyNode)(ListNode& self))
    : node(itsNode), source(&itsSource), empty(emptyNode) {
  source->AddDependent(*this);
}

ListView::~ListView() {
  if (source != nullptr) source->RemoveDependent(*this);
}

void ListView::End() noexcept { node.TellEnd(empty); }

void ListView::Empty() noexcept {
  order.Erase(0, order.Size());
  aside = 0;
  isAwake = false;
  hasEnded = true;
  if (isLosingList) ForgetList();
}

void ListView::ForgetList() noexcept {
  lastTurns = source->Turns();
  source = nullptr;
}

/// The view may be gone after its observers were told. Where the view itself is about to end, they
/// were told already, and it still has its list.
void ListView::ListEnds() noexcept {
  isLosingList = true;
  if (node.hasEnded) return ForgetList();
  node.TellEnd(empty);
}

void ListView::TryToAwaken() const noexcept {
  try {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): nobody has seen it asleep
    const_cast<ListView*>(this)->Awaken();
  } catch (...) {
    ReportFailure(ListName(), std::current_exception());
  }
}

const void* ListView::RowOf(RowId id) const noexcept {
  return source == nullptr ? nullptr : source->RowOf(id);
}

void ListView::CopyRows(std::span<const RowId> ids, const void** to) const noexcept {
  if (source != nullptr) return source->CopyRows(ids, to);
  std::fill_n(to, ids.size(), nullptr);
}

SetResult ListView::UpdateRow(RowId id, const RowEdit& edit) {
  if (source != nullptr) return source->UpdateRow(id, edit);
  return {false, PropertyError::Absent, L"The list of this view has ended."};
}

const std::shared_ptr<ListTurns>& ListView::Turns() const noexcept {
  return source == nullptr ? lastTurns : source->Turns();
}

VtrString ListView::ListName() const {
  return source == nullptr ? VtrString() : source->ListName();
}

RowId ListView::IdsBelow() const noexcept { return source == nullptr ? 0 : source->IdsBelow(); }

bool ListView::Awaken() {
  if (isAwake || isAwaking || hasEnded || source == nullptr) return isAwake;
  const ScopedValue awaking(isAwaking, true);
  Turns()->IsTelling() ? AwakenNow() : TakeTurn([this] { AwakenNow(); });
  return isAwake;
}

/// Follows the list anew when the rows were asked, so that it hears of the present step exactly if
/// that has not changed the list yet. Where the list is a view that sleeps, it awakes first, and
/// this fails if that fails: rows that it shows only later would not be told to this view. A list
/// that is just ending tells the view so where it stands already.
void ListView::AwakenNow() {
  if (!source->Awaken() || source == nullptr) return;
  ReserveAll();
  TakeRowsOfSource();
  Evaluate();
  if (source == nullptr) return;
  order.Assign(target);
  aside = asideInTarget;
  isAwake = true;
  if (source->hasEnded) return;
  try {
    source->AddDependent(*this);
  } catch (...) {
    isAwake = false;
    order.Erase(0, order.Size());
    throw;
  }
  source->RemoveDependent(*this);
}

void ListView::Prepare(const ListPlan& plan) {
  if (!isAwake) return;
  const ListPlan own = OwnPlan(plan);
  plannedInsertions = own.insertions - ownInsertions;
  plannedChanges = own.changes;
  ReserveRoom(own.mostChanged, own.idsBelow);
  order.Reserve(own.insertions, own.idsBelow);
  node.PrepareDependents(own);
}

ListPlan ListView::Pending() const noexcept {
  return source == nullptr ? ListPlan() : OwnPlan(source->Pending());
}

/// A row that changes may move or come in a view. A step that concerns more than a few rows may
/// become one that concerns all.
ListPlan ListView::OwnPlan(const ListPlan& plan) const noexcept {
  ListPlan own;
  std::size_t most = plan.mostChanged;
  for (const ListStep& step : plan.steps) {
    const bool isWhole =
        step.kind == ListChangeKind::Reset || step.kind == ListChangeKind::Reordered;
    most = std::max(most, isWhole ? few + 1 : step.rows.size());
  }
  own.changes = plan.changes;
  own.insertions = plan.insertions + plan.changes + ownInsertions;
  own.idsBelow = plan.idsBelow;
  own.mostRows = std::max(plan.mostRows, order.Size());
  own.mostChanged = most <= few ? most : std::max(own.mostRows, few + 1);
  return own;
}

void ViewRoom::Reserve(std::size_t most) {
  target.reserve(most);
  come.reserve(most);
  gone.reserve(most);
  rows.reserve(most);
  placed.reserve(most);
  coming.reserve(most);
  others.reserve(most);
  compared.reserve(most);
  spare.reserve(most);
}

void ViewRoom::TakeContents(const ViewRoom& other) {
  target = other.target;
  come = other.come;
  gone = other.gone;
  rows = other.rows;
  placed = other.placed;
  coming = other.coming;
  others = other.others;
  compared = other.compared;
}

/// The arrays that get too small are kept until the family is at rest.
void ListView::ReserveRoom(std::size_t most, RowId idsBelow) {
  const std::size_t words = idsBelow / markBits + 1;
  if (marks.size() < words) marks.resize(words);
  most = std::max(most, few);
  if (target.capacity() >= most) return;
  ViewRoom larger;
  larger.Reserve(most);
  larger.TakeContents(*this);
  outgrown.reserve(outgrown.size() + 1);
  ViewRoom& present = *this;
  outgrown.push_back(std::move(present));
  present = std::move(larger);
}

void ListView::ReserveAll() {
  ReserveRoom(std::max(source->Size(), order.Size()), source->IdsBelow());
}

void ListView::PrepareOwn(std::size_t insertions) {
  ListPlan own;
  own.changes = plannedChanges;
  own.insertions = plannedInsertions + insertions;
  own.idsBelow = IdsBelow();
  own.mostRows = source->Size();
  own.mostChanged = std::max(own.mostRows, few + 1);
  order.Reserve(own.insertions, own.idsBelow);
  node.PrepareDependents(own);
  ownInsertions = insertions;
}

void ListView::AtRest() noexcept {
  plannedInsertions = plannedChanges = ownInsertions = 0;
  order.Reserve(0, 0);  // gives back what nobody has used
  outgrown.clear();
  if (target.capacity() > few) static_cast<ViewRoom&>(*this) = {};
  node.RestDependents();
}

void ListView::TakeTurn(RepeatingCallback<void()> run) {
  const auto turns = Turns();
  turns->Take(std::make_unique<Turn>(*this, std::move(run)));
}

void ListView::TakeRowsOfSource() noexcept {
  target.resize(source->Size());
  source->CopyIds(0, target);
}

std::size_t ListView::MostRanges() const noexcept {
  return std::max<std::size_t>(64, order.Size() / 4);
}

void ListView::Mark(std::span<const RowId> ids) noexcept {
  std::ranges::fill(marks, 0);
  for (const RowId id : ids) marks[id / markBits] |= std::uint64_t{1} << id % markBits;
}

}  // namespace DataBinding::details

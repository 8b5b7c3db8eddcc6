// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/FilteredView.h"

#include <algorithm>
#include <utility>

#include "RowFunction.h"

namespace DataBinding::details {

namespace {

/// Asks an application's function whether rows are shown.
class RowTest {
 public:
  RowTest(const RowPredicate& predicate, const ListNode& itsSource,
          const ListNode& itsNode) noexcept
      : function(predicate), source(itsSource), node(itsNode) {}

  [[nodiscard]] bool operator()(RowId id) const noexcept {
    try {
      return function(source.RowOf(id));
    } catch (...) {
      ReportOf(node);
      return false;
    }
  }

 private:
  RowFunction<bool(const void*)> function;
  const ListNode& source;
  const ListNode& node;
};

}  // namespace

FilteredView::FilteredView(ListNode& itsNode, ListNode& itsSource,
                           void (*emptyNode)(ListNode& self), RowPredicate function,
                           Properties properties)
    : ListView(itsNode, itsSource, emptyNode),
      predicate(std::move(function)),
      followed(Follow(properties)) {}

/// An announcement that is under way may call a subscriber that was cancelled, so the callbacks ask
/// whether the view lives.
std::vector<Subscription> FilteredView::Follow(Properties properties) {
  std::vector<Subscription> made;
  for (const PropertyBase* const property : properties) {
    auto& home = static_cast<DataSourceImpl&>(property->Home());
    made.push_back(home.Register(
        [this, alive = node.Liveness()] {
          if (alive.IsValid()) Refilter();
        },
        property->Name()));
  }
  return made;
}

void FilteredView::SetFilter(RowPredicate function, Properties properties) {
  auto following = Follow(properties);
  if (IsAsleep()) {
    predicate = std::move(function);
    followed = std::move(following);
    return;
  }
  TakeTurn([this, function = std::move(function), following = std::move(following)]() mutable {
    FilterBy(function, following);
  });
}

void FilteredView::Refilter() {
  if (!IsAsleep()) TakeTurn([this] { AskAnew(); });
}

/// Both settings are exchanged before the rows are asked, since the observers who hear the answers
/// may end the view, and put back where the view or its dependents cannot prepare for the answers.
void FilteredView::FilterBy(RowPredicate& function, std::vector<Subscription>& following) {
  const auto exchange = [&] {
    std::swap(predicate, function);
    followed.swap(following);
  };
  exchange();
  try {
    AskAnew();
  } catch (...) {
    exchange();
    throw;
  }
}

/// Where this throws, nothing was told. The view may be gone after it.
void FilteredView::AskAnew() {
  if (!IsAwake()) return;
  ReserveAll();
  AskMany([](RowId) { return true; });
  PrepareOwn(target.size());
  TellAnswers();
}

void FilteredView::Evaluate() noexcept {
  const RowTest matches(predicate, *source, node);
  std::erase_if(target, [&](RowId id) { return !matches(id); });
}

void FilteredView::Remove(const ListStep& step) noexcept {
  placed.clear();
  for (const RowId id : step.rows) {
    if (order.Contains(id)) placed.push_back({order.IndexOf(id), id});
  }
  TellRemovals();
}

/// Finds the part of a change that concerns rows that are shown. The other contents of the rows are
/// not the same in the second call.
bool FilteredView::TakeShown(const ListStep& step) noexcept {
  rows.clear();
  others.clear();
  for (std::size_t i = 0; i < step.rows.size(); ++i) {
    if (!order.Contains(step.rows[i])) continue;
    rows.push_back(step.rows[i]);
    others.push_back(step.others[i]);
  }
  passedOn = step;
  passedOn.count = rows.size();
  passedOn.rows = rows;
  passedOn.others = others;
  return !rows.empty();
}

void FilteredView::PassOn(const ListStep& step) noexcept {
  if (TakeShown(step)) TellBefore(passedOn);
}

void FilteredView::AskChanged(const ListStep& step) noexcept {
  if (!TakeShown(step) || TellAfter(passedOn)) Ask(step.rows);
}

/// Rows that stay in the list stay as they are; only those that come are asked.
void FilteredView::TakeTarget(const ListStep& step) noexcept {
  const RowTest matches(predicate, *source, node);
  Mark(step.come);
  target.clear();
  for (const RowId id : step.rows) {
    if (IsMarked(id) ? matches(id) : order.Contains(id)) target.push_back(id);
  }
  BeginTarget();
}

void FilteredView::Insert(const ListStep& step) noexcept {
  const RowTest matches(predicate, *source, node);
  placed.clear();
  for (const RowId id : step.rows) {
    if (matches(id)) placed.push_back({0, id});
  }
  if (placed.empty()) return;
  const std::size_t at = FindPlace(step.at, 0, order.Size());
  for (PlacedRow& row : placed) row.at = at;
  TellInsertions();
}

void FilteredView::Move(const ListStep& step) noexcept {
  rows.clear();
  std::ranges::copy_if(step.rows, std::back_inserter(rows),
                       [this](RowId id) { return order.Contains(id); });
  if (rows.empty()) return;
  const std::size_t from = order.IndexOf(rows.front());
  const std::size_t count = rows.size();
  std::size_t to = FindPlace(step.to, 0, from);
  if (to == from) to = FindPlace(step.to, from + count, order.Size()) - count;
  if (to != from) Tell({ListChangeKind::Moved, from, count, to, rows});
}

void FilteredView::Ask(std::span<const RowId> ids) noexcept {
  if (ids.size() <= few) return AskFew(ids);
  Mark(ids);
  AskMany([this](RowId id) { return IsMarked(id); });
  TellAnswers();
}

void FilteredView::AskFew(std::span<const RowId> ids) noexcept {
  const RowTest matches(predicate, *source, node);
  placed.clear();
  coming.clear();
  for (const RowId id : ids) {
    const bool isShown = order.Contains(id);
    if (isShown == matches(id)) continue;
    if (isShown) {
      placed.push_back({order.IndexOf(id), id});
    } else {
      coming.push_back({source->IndexOfRow(id), id});
    }
  }
  std::ranges::sort(placed, {}, &PlacedRow::at);
  std::ranges::sort(coming, {}, &PlacedRow::at);
  if (!TellRemovals()) return;
  for (PlacedRow& row : coming) row.at = FindPlace(row.at, 0, order.Size());
  placed.swap(coming);
  TellInsertions();
}

/// Goes over all rows of the list once, and asks for those for which `asks` answers true. `placed`
/// gets the rows that go, `coming` those that come when these are gone, `target` what is shown in
/// the end.
template <class Asks>
void FilteredView::AskMany(Asks asks) noexcept {
  const RowTest matches(predicate, *source, node);
  placed.clear();
  coming.clear();
  TakeRowsOfSource();
  std::size_t index = 0;
  std::size_t shown = 0;
  std::size_t kept = 0;
  for (const RowId id : target) {
    const bool wasShown = order.Contains(id);
    const bool isShown = asks(id) ? matches(id) : wasShown;
    if (wasShown && !isShown) placed.push_back({index, id});
    if (isShown && !wasShown) coming.push_back({kept, id});
    if (isShown) target[shown++] = id;
    index += wasShown ? 1 : 0;
    kept += wasShown && isShown ? 1 : 0;
  }
  target.resize(shown);
}

bool FilteredView::TellAnswers() noexcept {
  const std::size_t removals = CountRanges();
  placed.swap(coming);
  const bool isMuch = removals + CountGaps() > MostRanges();
  placed.swap(coming);
  if (isMuch) return TellTarget();
  if (!TellRemovals()) return false;
  placed.swap(coming);
  return TellInsertions();
}

/// Finds the first of the rows from `first` to `end` that stands behind a place of the list.
std::size_t FilteredView::FindPlace(std::size_t place, std::size_t first,
                                    std::size_t end) const noexcept {
  while (first < end) {
    const std::size_t middle = (first + end) / 2;
    if (source->IndexOfRow(order.At(middle)) > place) {
      end = middle;
    } else {
      first = middle + 1;
    }
  }
  return first;
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/FilteredView.h"

#include <algorithm>
#include <array>
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
    const void* const row = source.RowOf(id);
    bool isShown = false;
    Ask({{&row, 1}, &isShown});
    return isShown;
  }
  /// Calls visit(id, isShown) for each of the rows, in order.
  template <class Visit>
  void ForEach(std::span<const RowId> ids, Visit visit) const noexcept {
    while (!ids.empty()) {
      const std::size_t count = std::min(most, ids.size());
      AskTogether(ids.first(count), visit);
      ids = ids.subspan(count);
    }
  }
  /// Calls visit(id, isShown) for each row of the list, in order.
  template <class Visit>
  void ForAll(Visit visit) const noexcept {
    std::array<RowId, most> ids{};
    for (std::size_t at = 0; at < source.Size(); at += most) {
      const std::span<RowId> some(ids.data(), std::min(most, source.Size() - at));
      source.CopyIds(at, some);
      AskTogether(some, visit);
    }
  }

 private:
  static constexpr std::size_t most = 64;

  template <class Visit>
  void AskTogether(std::span<const RowId> ids, Visit& visit) const noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): CopyRows fills as many as are asked
    std::array<const void*, most> rows;
    std::array<bool, most> answers{};
    source.CopyRows(ids, rows.data());
    Ask({{rows.data(), ids.size()}, answers.data()});
    for (std::size_t i = 0; i < ids.size(); ++i) visit(ids[i], answers[i]);
  }
  void Ask(RowQuestions questions) const noexcept {
    while (questions.answered < questions.rows.size()) {
      try {
        return function(questions);
      } catch (...) {
        ReportOf(node);
        ++questions.answered;
      }
    }
  }

  RowFunction<void(RowQuestions&)> function;
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
  CompareAnswers([this](auto compare) { RowTest(predicate, *source, node).ForAll(compare); });
  PrepareOwn(AreAnswersMany() ? order.Size() + coming.size() - placed.size() : coming.size());
  TellAnswers();
}

void FilteredView::Evaluate() noexcept {
  const RowTest matches(predicate, *source, node);
  std::size_t shown = 0;
  matches.ForEach(target, [&](RowId id, bool isShown) {
    if (isShown) target[shown++] = id;
  });
  target.resize(shown);
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
  matches.ForEach(step.rows, [this](RowId id, bool isShown) {
    if (isShown) placed.push_back({0, id});
  });
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
  rows.clear();
  RowTest(predicate, *source, node).ForEach(ids, [this](RowId id, bool isShown) {
    if (isShown != order.Contains(id)) rows.push_back(id);
  });
  if (rows.empty()) return;
  Mark(rows);
  TakeRowsOfSource();
  CompareAnswers([this](auto compare) {
    for (const RowId id : target) compare(id, order.Contains(id) != IsMarked(id));
  });
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

/// Goes over all rows of the list: visit(compare) calls compare(id, isShown) for each, in order.
/// `placed` gets the rows that go, and `coming` those that come when these are gone. Most rows stay
/// as they are, so nothing else is done for each.
template <class Visit>
void FilteredView::CompareAnswers(Visit visit) noexcept {
  placed.clear();
  coming.clear();
  visit([this, index = std::size_t{0}](RowId id, bool isShown) mutable {
    const bool wasShown = order.Contains(id);
    if (isShown && !wasShown) coming.push_back({index - placed.size(), id});
    if (wasShown && !isShown) placed.push_back({index, id});
    index += wasShown ? 1 : 0;
  });
}

/// Says whether the answers are told at once instead of in ranges.
bool FilteredView::AreAnswersMany() const noexcept {
  return CountRanges(placed) + CountGaps(coming) > MostRanges();
}

bool FilteredView::TellAnswers() noexcept {
  if (!AreAnswersMany()) {
    if (!TellRanges(ListChangeKind::Removed)) return false;
    placed.swap(coming);
    return TellRanges(ListChangeKind::Inserted);
  }
  CopyRest(rows);
  placed.swap(coming);
  MergeInto(rows);
  return TellTarget();
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

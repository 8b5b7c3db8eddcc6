// SPDX-License-Identifier: Apache-2.0
// While the model changes, Qt's selection model adapts itself, and what it tells then is no choice
// of the user: rows that a filter hides would not be chosen any more. Therefore this hears that a
// change begins before the selection model hears it, and that it has ended after that.

#include "DataBindingQt6/models/ListSelection.h"

#include <QAbstractProxyModel>
#include <QPointer>
#include <algorithm>

#include "DataBinding/foundation/ScopedValue.h"
#include "DataBindingQt6/models/ListModel.h"
#include "DataBindingQt6/values/details/Guard.h"

namespace DataBinding::Qt6 {

namespace {

/// Finds the ListModel below proxies; null where there is none.
const ListModel* ModelBelow(const QAbstractItemModel* model) {
  while (const auto* const proxy = qobject_cast<const QAbstractProxyModel*>(model)) {
    model = proxy->sourceModel();
  }
  return qobject_cast<const ListModel*>(model);
}

std::optional<RowId> IdAt(QModelIndex index) {
  while (const auto* const proxy = qobject_cast<const QAbstractProxyModel*>(index.model())) {
    index = proxy->mapToSource(index);
  }
  const auto* const model = qobject_cast<const ListModel*>(index.model());
  return model == nullptr ? std::nullopt : model->IdAt(index);
}

/// Returns the index of a row in a model above the ListModel; invalid where it is not shown.
QModelIndex IndexIn(const QAbstractItemModel* model, RowId id) {
  if (const auto* const proxy = qobject_cast<const QAbstractProxyModel*>(model)) {
    const QModelIndex below = IndexIn(proxy->sourceModel(), id);
    return below.isValid() ? proxy->mapFromSource(below) : QModelIndex();
  }
  const auto* const list = qobject_cast<const ListModel*>(model);
  return list == nullptr ? QModelIndex() : list->IndexOf(id);
}

/// Returns the rows that have a selected cell, in ascending order.
std::vector<int> RowsOf(const QItemSelection& selection) {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selection) {
    if (range.parent().isValid()) continue;
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  }
  std::ranges::sort(rows);
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

/// Makes a selection of all columns of rows, which are in ascending order.
QItemSelection SelectionOf(const QAbstractItemModel& model, const std::vector<int>& rows) {
  QItemSelection selection;
  const int lastColumn = model.columnCount() - 1;
  for (std::size_t i = 0; i < rows.size();) {
    const int first = rows[i];
    int last = first;
    for (++i; i < rows.size() && rows[i] == last + 1; ++i) ++last;
    selection.select(model.index(first, 0), model.index(last, lastColumn));
  }
  return selection;
}

}  // namespace

ListSelection::ListSelection(QItemSelectionModel* selectionModel, AnySelection& rows)
    : QObject(selectionModel),
      selection(selectionModel == nullptr ? *new QItemSelectionModel(nullptr, this)
                                          : *selectionModel),
      chosen(rows.AsWeakPtr()) {
  QAbstractItemModel* const model = selection.model();
  if (model != nullptr) {
    FollowBeginnings(*model);
    selection.setModel(nullptr);  // so that it hears of changes after this
    selection.setModel(model);
    FollowEnds(*model);
  }
  connect(&selection, &QItemSelectionModel::selectionChanged, this, [this] { Take(); });
  connect(&selection, &QItemSelectionModel::currentChanged, this, [this] { Take(); });
  seen = rows.Observe({.changed = [this] { Show(); }});
  Show();
}

ListSelection::~ListSelection() = default;

void ListSelection::FollowBeginnings(const QAbstractItemModel& model) {
  using Model = QAbstractItemModel;
  connect(&model, &Model::rowsAboutToBeInserted, this, [this] { Begin(); });
  connect(&model, &Model::rowsAboutToBeRemoved, this, [this] { Begin(); });
  connect(&model, &Model::rowsAboutToBeMoved, this, [this] { Begin(); });
  connect(&model, &Model::layoutAboutToBeChanged, this, [this] { Begin(); });
  connect(&model, &Model::modelAboutToBeReset, this, [this] { Begin(); });
}

void ListSelection::FollowEnds(const QAbstractItemModel& model) {
  using Model = QAbstractItemModel;
  connect(&model, &Model::rowsInserted, this,
          [this](const QModelIndex&, int first, int last) { EndInsertion(first, last); });
  connect(&model, &Model::rowsRemoved, this, [this] { End(false); });
  connect(&model, &Model::rowsMoved, this, [this] { End(false); });
  connect(&model, &Model::layoutChanged, this, [this] { End(true); });
  connect(&model, &Model::modelReset, this, [this] { End(true); });
}

void ListSelection::End(bool mayShowOthers) {
  isShowDue = isShowDue || mayShowOthers;
  if (changing > 0) --changing;  // this may have been made while the model changed
  if (changing == 0 && isShowDue) Show();
}

/// Rows that are chosen may be shown again.
void ListSelection::EndInsertion(int first, int last) {
  bool hasChosen = false;
  for (int row = first; row <= last && !hasChosen && chosen && !chosen->Ids().empty(); ++row) {
    const auto id = IdAt(selection.model()->index(row, 0));
    hasChosen = id && chosen->Contains(*id);
  }
  End(hasChosen);
}

/// Returns what is selected: first what was chosen before, in that order, and the row of the
/// current index last.
std::vector<RowId> ListSelection::SelectedIds() const {
  std::vector<RowId> ids;
  std::vector<RowId> others;
  std::vector<RowId> sorted;
  for (const int row : RowsOf(selection.selection())) {
    const auto id = IdAt(selection.model()->index(row, 0));
    if (!id) continue;
    sorted.push_back(*id);
    if (!chosen->Contains(*id)) others.push_back(*id);
  }
  std::ranges::sort(sorted);
  for (const RowId id : chosen->Ids()) {
    if (std::ranges::binary_search(sorted, id)) ids.push_back(id);
  }
  ids.insert(ids.end(), others.begin(), others.end());
  const auto current = IdAt(selection.currentIndex());
  const auto found = current ? std::ranges::find(ids, *current) : ids.end();
  if (found != ids.end()) std::rotate(found, found + 1, ids.end());
  return ids;
}

/// Chooses what the user has selected. Whatever the observers choose instead is selected then.
void ListSelection::Take() {
  const bool isOfUser = changing == 0 && !isShowing && !isTaking;
  if (!isOfUser || !chosen || ModelBelow(selection.model()) == nullptr) return;
  const QPointer<ListSelection> self(this);
  const std::vector<RowId> ids = SelectedIds();
  if (std::ranges::equal(ids, chosen->Ids())) return;
  isTaking = true;
  details::Guard(L"selection", [&] { chosen->Choose(ids); });
  if (self == nullptr) return;
  isTaking = false;
  Show();
}

/// Selects what is chosen, unless that is so already. What hears of that may choose other rows.
void ListSelection::Show() {
  isShowDue = changing != 0 || isShowing;
  if (isShowDue || isTaking || selection.model() == nullptr) return;
  std::vector<int> wanted;
  if (chosen) {
    for (const RowId id : chosen->Ids()) {
      const QModelIndex index = IndexIn(selection.model(), id);
      if (index.isValid()) wanted.push_back(index.row());
    }
  }
  std::ranges::sort(wanted);
  const QPointer<ListSelection> self(this);
  isShowing = true;
  ShowRows(wanted);
  if (self != nullptr) ShowCurrent();
  if (self == nullptr) return;
  isShowing = false;
  if (isShowDue) Show();
}

void ListSelection::ShowRows(const std::vector<int>& wanted) {
  if (RowsOf(selection.selection()) == wanted) return;
  selection.select(SelectionOf(*selection.model(), wanted), QItemSelectionModel::ClearAndSelect);
}

void ListSelection::ShowCurrent() {
  const auto id = chosen ? chosen->CurrentId() : std::nullopt;
  if (!id || selection.model() == nullptr) return;
  const QModelIndex index = IndexIn(selection.model(), *id);
  const QModelIndex current = selection.currentIndex();
  if (!index.isValid() || (current.isValid() && current.row() == index.row())) return;
  const int column = current.isValid() ? current.column() : 0;
  selection.setCurrentIndex(index.siblingAtColumn(column), QItemSelectionModel::NoUpdate);
}

}  // namespace DataBinding::Qt6

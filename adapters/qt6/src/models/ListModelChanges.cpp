// SPDX-License-Identifier: Apache-2.0
// This file holds how a ListModel tells its views what changes in the list.

#include <algorithm>
#include <utility>

#include "DataBindingQt6/models/ListModel.h"

namespace DataBinding::Qt6 {

/// Says whether the rows have become ones whose fields make other columns.
bool ListModel::HasOtherFields() const {
  if (!hasAllFields || rows.FieldCount() == 0) return false;
  if (rows.FieldCount() != columns.size()) return true;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].wanted.field != rows.FieldName(i)) return true;
  }
  return false;
}

/// Finds the fields of the columns. Where rows of another type have come, the model is sorted by
/// the field that has the column now.
void ListModel::FindFields() {
  if (rows.FieldCount() == 0) return;
  if (HasOtherFields()) {
    columns.clear();
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
      columns.push_back({{rows.FieldName(i)}, {}});
    }
  }
  bool isSame = true;
  for (ShownColumn& column : columns) {
    const auto field = rows.FieldNumber(column.wanted.field);
    isSame = std::exchange(column.field, field) == field && isSame;
    column.kind = field ? rows.FieldKind(*field) : ValueKind::Nothing;
  }
  if (!isSame && sortColumn >= 0) sort(sortColumn, sortOrder);
}

/// The rows of what is believed to have happened stand where they stood before it.
std::size_t ListModel::PlaceBelieved(int row) const {
  int place = row;
  if (believed == Open::Insert && row >= openAt) {
    place = row < openAt + openRows ? -1 : row - openRows;
  } else if (believed == Open::Remove && row >= openAt) {
    place = row + openRows;
  } else if (believed == Open::Move) {
    const bool isMoved = row >= openTo && row < openTo + openRows;
    place = row < openTo ? row : row - openRows;
    if (place >= openAt) place += openRows;
    if (isMoved) place = openAt + row - openTo;
  }
  return static_cast<std::size_t>(place);
}

/// When the list ends or is emptied within a change, a Reset takes the place of the rest. Views are
/// told the rest all the same, so that they hear a second call for each first one.
void ListModel::Interrupt() {
  if (open == Open::Nothing) return;
  const bool hasHappened = open != Open::Move && static_cast<std::size_t>(count) != rows.Size();
  if (!hasHappened) believed = open;
  Close();
  open = Open::Reset;
}

void ListModel::Begin(const ListChange& change) {
  Interrupt();
  if (open == Open::Reset) return beginResetModel();
  openAt = static_cast<int>(change.At());
  openRows = static_cast<int>(change.Count());
  openTo = static_cast<int>(change.To());
  const int last = openAt + openRows - 1;
  switch (change.Kind()) {
    case ListChangeKind::Inserted:
      if (count == 0 && HasOtherFields()) break;
      if (count == 0) FindFields();
      open = Open::Insert;
      return beginInsertRows({}, openAt, last);
    case ListChangeKind::Removed:
      open = Open::Remove;
      return beginRemoveRows({}, openAt, last);
    case ListChangeKind::Moved:
      open = Open::Move;
      beginMoveRows({}, openAt, last, {}, openTo > openAt ? openTo + openRows : openTo);
      return;
    case ListChangeKind::Reordered:
      return BeginLayout();
    case ListChangeKind::Changed:
      return;
    default:
      break;
  }
  open = Open::Reset;
  beginResetModel();
}

void ListModel::End(const ListChange& change) {
  if (change.Kind() == ListChangeKind::Changed) return TellChanged(change);
  believed = Open::Nothing;
  if (open == Open::Reset) FindFields();
  Close();
}

void ListModel::Close() {
  switch (std::exchange(open, Open::Nothing)) {
    case Open::Insert:
      count += openRows;
      return endInsertRows();
    case Open::Remove:
      count -= openRows;
      return endRemoveRows();
    case Open::Move:
      return endMoveRows();
    case Open::Layout:
      return EndLayout();
    case Open::Reset:
      count = static_cast<int>(rows.Size());
      return endResetModel();
    default:
      return;
  }
}

void ListModel::BeginLayout() {
  open = Open::Layout;
  Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  persistent = persistentIndexList();
  persistentRows.clear();
  for (const QModelIndex& index : persistent) persistentRows.push_back(IdAt(index));
}

void ListModel::EndLayout() {
  QModelIndexList moved;
  moved.reserve(persistent.size());
  for (qsizetype i = 0; i < persistent.size(); ++i) {
    const auto id = persistentRows[static_cast<std::size_t>(i)];
    moved.push_back(id ? IndexOf(*id, persistent[i].column()) : QModelIndex());
  }
  changePersistentIndexList(persistent, moved);
  persistent.clear();
  Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

/// A column that has a function may show other fields, too. All rows are told in one range: a proxy
/// that sorts places the rows that it is told of among the others, and these must not have changed.
void ListModel::TellChanged(const ListChange& change) {
  const auto shows = [&](const ShownColumn& column) {
    return column.wanted.format || (column.field && change.HasField(*column.field));
  };
  const auto left = std::ranges::find_if(columns, shows);
  if (left == columns.end() || change.Count() == 0) return;
  const auto right = std::find_if(columns.rbegin(), columns.rend(), shows).base() - 1;
  std::size_t first = change.PlaceOf(0);
  std::size_t last = first;
  for (std::size_t i = 1; i < change.Count(); ++i) {
    const std::size_t place = change.PlaceOf(i);
    first = std::min(first, place);
    last = std::max(last, place);
  }
  Q_EMIT dataChanged(index(static_cast<int>(first), static_cast<int>(left - columns.begin())),
                     index(static_cast<int>(last), static_cast<int>(right - columns.begin())));
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
// This file holds how rows of a ListModel are dragged to other places.

#include <QMimeData>
#include <QPersistentModelIndex>
#include <algorithm>

#include "DataBindingQt6/models/ListModel.h"

namespace DataBinding::Qt6 {

namespace {

const QString rowsFormat = QStringLiteral("application/x-databinding-rows");

/// The rows of one model that are dragged, which other rows may come before or leave meanwhile.
class DraggedRows final : public QMimeData {
 public:
  explicit DraggedRows(const QModelIndexList& indexes) {
    for (const QModelIndex& index : indexes) rows.emplace_back(index);
    setData(rowsFormat, {});
  }

  std::vector<QPersistentModelIndex> rows;
};

const DraggedRows* RowsOf(const QMimeData* data, const ListModel& model) {
  const auto* const dragged = dynamic_cast<const DraggedRows*>(data);
  const bool hasOwn = dragged != nullptr && !dragged->rows.empty() &&
                      std::ranges::all_of(dragged->rows, [&](const auto& index) {
                        return !index.isValid() || index.model() == &model;
                      });
  return hasOwn ? dragged : nullptr;
}

}  // namespace

bool ListModel::moveRows(const QModelIndex& sourceParent, int sourceRow, int moved,
                         const QModelIndex& destinationParent, int destinationChild) {
  const bool isHere = !sourceParent.isValid() && !destinationParent.isValid() && sourceRow >= 0 &&
                      moved > 0 && destinationChild >= 0;
  if (!isHere) return false;
  const int to = destinationChild > sourceRow ? destinationChild - moved : destinationChild;
  if (to < sourceRow && destinationChild > sourceRow) return false;  // they would stay
  return Attempt({}, [&] {
    return rows.MoveRows(static_cast<std::size_t>(sourceRow), static_cast<std::size_t>(moved),
                         static_cast<std::size_t>(to));
  });
}

Qt::DropActions ListModel::supportedDropActions() const {
  return rows.CanMoveRows() ? Qt::MoveAction : Qt::IgnoreAction;
}

QStringList ListModel::mimeTypes() const { return {rowsFormat}; }

QMimeData* ListModel::mimeData(const QModelIndexList& indexes) const {
  return indexes.isEmpty() || !rows.CanMoveRows() ? nullptr : new DraggedRows(indexes);
}

bool ListModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int /*row*/,
                                int /*column*/, const QModelIndex& /*parent*/) const {
  return action == Qt::MoveAction && rows.CanMoveRows() && RowsOf(data, *this) != nullptr;
}

bool ListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                             const QModelIndex& parent) {
  if (!canDropMimeData(data, action, row, column, parent)) return false;
  std::vector<int> places;
  for (const auto& index : RowsOf(data, *this)->rows) {
    if (index.isValid()) places.push_back(index.row());
  }
  std::ranges::sort(places);
  std::vector<RowId> ids;
  for (const int place : places) {
    const auto id = rows.IdAt(static_cast<std::size_t>(place));
    if (id && (ids.empty() || ids.back() != *id)) ids.push_back(*id);
  }
  const int before = parent.isValid() ? parent.row() : row;
  Attempt({}, [&] {
    return MoveBefore(ids, before < 0 ? rows.Size() : static_cast<std::size_t>(before));
  });
  return false;
}

/// Moves rows one after the other, so that they stand side by side before the row at a place.
SetResult ListModel::MoveBefore(const std::vector<RowId>& ids, std::size_t before) {
  SetResult result;
  for (const RowId id : ids) {
    const auto from = rows.IndexOf(id);
    if (!from || !result.IsAccepted()) return result;
    const std::size_t to = *from < before ? before - 1 : before;
    result = rows.MoveRows(*from, 1, to);
    before = to + 1;
  }
  return result;
}

}  // namespace DataBinding::Qt6

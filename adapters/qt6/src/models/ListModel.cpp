// SPDX-License-Identifier: Apache-2.0
// This file holds what views read from a ListModel, and what they set.

#include "DataBindingQt6/models/ListModel.h"

#include <QPersistentModelIndex>
#include <QPointer>
#include <utility>

#include "Cells.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/details/Guard.h"

namespace DataBinding::Qt6 {

QVariant EditAsText(const Value& value, int role, const QModelIndex& /*index*/) {
  return role == Qt::EditRole ? QVariant(ToQString(value.ToText())) : QVariant();
}

ListModel::ListModel(AnyList& list, std::vector<ListColumn> wantedColumns, QObject* parent)
    : QAbstractTableModel(parent), rows(list), hasAllFields(wantedColumns.empty()) {
  columns.reserve(wantedColumns.size());
  for (ListColumn& column : wantedColumns) columns.push_back({std::move(column), {}});
  FindFields();
  count = static_cast<int>(rows.Size());
  seen = rows.Observe({.before = [this](const ListChange& change) { Begin(change); },
                       .after = [this](const ListChange& change) { End(change); }});
}

ListModel::~ListModel() = default;

std::optional<RowId> ListModel::IdAt(const QModelIndex& index) const {
  if (index.model() != this || index.row() < 0) return std::nullopt;
  return rows.IdAt(PlaceOf(index.row()));
}

QModelIndex ListModel::IndexOf(RowId id, int column) const {
  const auto row = rows.IndexOf(id);
  return row ? index(static_cast<int>(*row), column) : QModelIndex();
}

int ListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count; }

int ListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

const ListModel::ShownColumn* ListModel::ColumnOf(const QModelIndex& index) const {
  if (!index.isValid() || index.model() != this) return nullptr;
  const std::size_t number = details::ToSize(index.column());
  return number < columns.size() ? &columns[number] : nullptr;
}

Value ListModel::CellOf(const ShownColumn& column, const QModelIndex& index) const {
  return column.field ? rows.Cell(PlaceOf(index.row()), *column.field) : Value();
}

/// Returns nothing for a cell whose getter throws, since Qt asks for it.
QVariant ListModel::data(const QModelIndex& index, int role) const {
  const ShownColumn* const column = ColumnOf(index);
  if (column == nullptr) return {};
  if (column->wanted.format) {
    QVariant made = Formatted(*column, index, role);
    if (made.isValid()) return made;
  }
  return details::GuardRead(L"cell of a model", [&] {
    return details::CellData(column->kind, role, [&] { return CellOf(*column, index); });
  });
}

QVariant ListModel::Formatted(const ShownColumn& column, const QModelIndex& index, int role) const {
  return details::GuardRead(column.wanted.field, [&] {
    return column.wanted.format(CellOf(column, index), role, index);
  });
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool isOfColumn = orientation == Qt::Horizontal && section >= 0;
  if (!isOfColumn || role != Qt::DisplayRole || details::ToSize(section) >= columns.size()) {
    return QAbstractTableModel::headerData(section, orientation, role);
  }
  const ListColumn& column = columns[details::ToSize(section)].wanted;
  return column.header.isEmpty() ? ToQString(column.field) : column.header;
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
  const bool canMove = rows.CanMoveRows();
  const ShownColumn* const column = ColumnOf(index);
  if (column == nullptr) return canMove ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
  Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  flags.setFlag(Qt::ItemIsDragEnabled, canMove);
  if (!column->field || column->wanted.isReadOnly || !rows.CanSetField(*column->field)) {
    return flags;
  }
  return flags | details::EditFlag(column->kind);
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const ShownColumn* const column = ColumnOf(index);
  if (column == nullptr || !column->field || column->wanted.isReadOnly || !value.isValid() ||
      !details::IsEditRole(column->kind, role)) {
    return false;
  }
  return Attempt(index, [&, row = PlaceOf(index.row()), field = *column->field] {
    return details::SetCellData(
        value, role, [&](const Value& cell) { return rows.SetCell(row, field, cell); },
        [&](const VtrString& text) { return rows.SetCellText(row, field, text); });
  });
}

void ListModel::sort(int column, Qt::SortOrder order) {
  sortColumn = column;
  sortOrder = order;
  Attempt({}, [this] {
    const bool isOne = sortColumn >= 0 && details::ToSize(sortColumn) < columns.size();
    const auto field = isOne ? columns[details::ToSize(sortColumn)].field : std::nullopt;
    const bool isUp = sortOrder == Qt::AscendingOrder;
    field ? static_cast<void>(rows.SortBy(*field, isUp ? Order::Ascending : Order::Descending))
          : rows.KeepOrderOfList();
    return SetResult();
  });
}

/// Callbacks of the operation may do anything, also end the model. Qt lets no exception through.
bool ListModel::Attempt(const QModelIndex& index, const std::function<SetResult()>& operation) {
  const QPointer<ListModel> self(this);
  const QPersistentModelIndex cell(index);
  const SetResult result = details::GuardResult(rows.ListName(), operation);
  if (!result.IsAccepted() && self != nullptr) {
    Q_EMIT refused(cell, details::ReasonOf(result));
  }
  return result.IsAccepted();
}

}  // namespace DataBinding::Qt6

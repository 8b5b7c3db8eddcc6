// SPDX-License-Identifier: Apache-2.0
/// A ListModel shows a list in the tables, lists and combo boxes of Qt: any list, view or bind to a
/// list, also an AnyListBind whose source comes, goes and changes.
///
/// Columns are fields of the rows, by their names. Cells are edited, where the field may be set,
/// and a field of truth values is a check box. A value that is refused leaves the cell as it is,
/// and the model emits `refused` with the reason. Numbers stand on the right, and a function of the
/// column gives the cells other texts, colours and so on.
///
/// A cell whose getter or own form throws shows nothing. What a set, a sort or a move throws is a
/// refusal. The failure handler (ListenerGuard.h) is told of both, and Qt hears of no exception.
///
/// A change of a cell overwrites the text in an editor that is open there; a widget that is bound
/// by Bind keeps its text.
///
/// Views sort the model by its headers (`setSortingEnabled`) without a proxy and without touching
/// the list, and `sort(-1)` shows the list's order again. In that order rows are dragged to other
/// places of a list that may be changed. All changes of the list are told exactly, and a new order
/// keeps the selection, the current index and open editors at their rows. Only a Reset loses those;
/// a ListSelection brings the selection back.
///
/// The model, its views and the list end in any order; without its list it has no rows. All belong
/// to the thread of the list. It has as many rows as an int counts.
///
///   Qt6::ListModel model(processes, {{L"Name", "Process"}, {L"Cpu", "% of a core"}});
///   table->setModel(&model);
///   table->setSortingEnabled(true);
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QVariant>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "DataBinding/foundation/String.h"
#include "DataBinding/lists/AnySortedList.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

/// Gives a cell another look: answers what it shows for a role, or an invalid variant to leave that
/// to the model. The index leads to other cells, and to the row by ListModel::IdAt. What it throws
/// goes to the failure handler (ListenerGuard.h).
using CellFormat = std::function<QVariant(const Value& value, int role, const QModelIndex& index)>;

/// Lets a cell be edited as a text, by exactly the digits that it has. Qt's own delegate otherwise
/// edits a number with a fraction in a spin box that rounds it to two digits.
[[nodiscard]] DATABINDING_QT6_API QVariant EditAsText(const Value& value, int role,
                                                      const QModelIndex& index);

/// Describes a column of a ListModel.
struct ListColumn {
  /// The name of the field. A field that the rows do not have leaves the column empty.
  VtrString field;
  /// The text of the header; the name of the field where it is empty.
  QString header = {};
  /// May be null.
  CellFormat format = {};
  /// The user does not edit a read-only column.
  bool isReadOnly = false;
};

class DATABINDING_QT6_API ListModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// Shows these columns, or all fields of the rows where none is given.
  explicit ListModel(AnyList& list, std::vector<ListColumn> wantedColumns = {},
                     QObject* parent = nullptr);
  ~ListModel() override;

  /// The rows as the model shows them, for code that needs more than the columns.
  [[nodiscard]] AnyList& Rows() noexcept { return rows; }
  /// The id of the row of an index, which it has in the list, too. Nothing for an index that is not
  /// one of this model.
  [[nodiscard]] std::optional<RowId> IdAt(const QModelIndex& index) const;
  /// The index of a row, in a column. Invalid for a row that is not shown.
  [[nodiscard]] QModelIndex IndexOf(RowId id, int column = 0) const;

  /// These are the operations of every item model.
  ///@{
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role = Qt::DisplayRole) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  ///@}
  /// Sets a cell. A text is read as a value of the field's kind. False where the value is refused.
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  /// Sorts the rows by the field of a column; -1 shows the order of the list.
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

  /// These move rows of the list, as long as the model shows its order. Rows are dropped within one
  /// model only. dropMimeData answers false even so: a view would remove the rows that it takes for
  /// copied.
  ///@{
  bool moveRows(const QModelIndex& sourceParent, int sourceRow, int moved,
                const QModelIndex& destinationParent, int destinationChild) override;
  [[nodiscard]] Qt::DropActions supportedDropActions() const override;
  [[nodiscard]] QStringList mimeTypes() const override;
  [[nodiscard]] QMimeData* mimeData(const QModelIndexList& indexes) const override;
  [[nodiscard]] bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row,
                                     int column, const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;
  ///@}

 Q_SIGNALS:
  /// A value that was to be set was refused, or rows that were to be moved; then the index is
  /// invalid. The reason is for people.
  void refused(const QModelIndex& index, const QString& reason);

 private:
  /// A column, and what was found of its field in the present type of rows.
  struct ShownColumn {
    ListColumn wanted;
    std::optional<std::size_t> field;
    ValueKind kind = ValueKind::Nothing;
  };
  enum class Open { Nothing, Insert, Remove, Move, Layout, Reset };

  [[nodiscard]] const ShownColumn* ColumnOf(const QModelIndex& index) const;
  /// Returns where a row of the model stands in the list.
  [[nodiscard]] std::size_t PlaceOf(int row) const {
    return believed == Open::Nothing ? static_cast<std::size_t>(row) : PlaceBelieved(row);
  }
  [[nodiscard]] std::size_t PlaceBelieved(int row) const;
  [[nodiscard]] Value CellOf(const ShownColumn& column, const QModelIndex& index) const;
  [[nodiscard]] QVariant Formatted(const ShownColumn& column, const QModelIndex& index,
                                   int role) const;
  [[nodiscard]] bool HasOtherFields() const;
  void FindFields();
  bool Attempt(const QModelIndex& index, const std::function<SetResult()>& operation);
  void Begin(const ListChange& change);
  void End(const ListChange& change);
  void BeginLayout();
  void EndLayout();
  void Close();
  void Interrupt();
  void TellChanged(const ListChange& change);
  SetResult MoveBefore(const std::vector<RowId>& ids, std::size_t before);

  AnySortedList rows;
  bool hasAllFields;
  std::vector<ShownColumn> columns;
  int sortColumn = -1;
  Qt::SortOrder sortOrder = Qt::AscendingOrder;

  /// What was begun and not ended yet, and the rows that it concerns.
  ///@{
  Open open = Open::Nothing;
  int openAt = 0;
  int openRows = 0;
  int openTo = 0;
  ///@}
  /// What the views believe to have happened, though the list did not come to it before its end.
  Open believed = Open::Nothing;
  /// The rows that the views know of.
  int count = 0;
  /// The persistent indexes while the order changes, and their rows.
  QModelIndexList persistent;
  std::vector<std::optional<RowId>> persistentRows;
  Subscription seen;
};

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// A ListSelection joins what is selected in Qt's views of a ListModel, or of a proxy over it, to a
/// Selection of the library, so that both always have the same rows.
///
/// Rows are known by their ids. So a row stays selected when the list, the model or the proxy is
/// sorted or filtered, when all rows are assigned anew, and when a bind changes over to another
/// list; a row that a filter hides is selected again when it is shown. What the user selects
/// replaces all that was chosen, also what is hidden. A row counts as selected when one of its
/// cells is, and the row of the view's current index is the one chosen last, as long as it is
/// selected: a CurrentRow follows it. Rows that the program chooses are selected in all columns,
/// and the last one becomes current.
///
/// A view in SingleSelection mode chooses the next row itself when the chosen one is hidden; where
/// a filter may do that, let the view select several rows (ExtendedSelection).
///
/// The list of the Selection is that of the model, or one whose ids that has: the list itself, a
/// view of it, or the same bind. The join is a child of the selection model and ends with it. The
/// selections, the model and the list end in any order, on the thread of the list. A view gets
/// another selection model when it gets another model; join that one then.
///
///   Selection<Process> chosen(processes);
///   table->setModel(&model);
///   new Qt6::ListSelection(table->selectionModel(), chosen);
#pragma once

#include <QAbstractItemModel>
#include <QItemSelectionModel>
#include <QObject>
#include <vector>

#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/Selection.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

class DATABINDING_QT6_API ListSelection : public QObject {
 public:
  /// Selects what is chosen. The selection model has its model. A null one is joined to nothing.
  ListSelection(QItemSelectionModel* selectionModel, AnySelection& rows);
  ~ListSelection() override;

 private:
  void FollowBeginnings(const QAbstractItemModel& model);
  void FollowEnds(const QAbstractItemModel& model);
  void Begin() { ++changing; }
  void End(bool mayShowOthers);
  void EndInsertion(int first, int last);
  [[nodiscard]] std::vector<RowId> SelectedIds() const;
  void Take();
  void Show();
  void ShowRows(const std::vector<int>& wanted);
  void ShowCurrent();

  QItemSelectionModel& selection;
  WeakPtr<AnySelection> chosen;
  int changing = 0;
  bool isShowDue = false;
  bool isTaking = false;
  bool isShowing = false;
  Subscription seen;
};

}  // namespace DataBinding::Qt6

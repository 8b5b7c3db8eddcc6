// SPDX-License-Identifier: Apache-2.0
/// A ScopeTreeModel shows the tree of scopes below one scope, such as the documents and pages of an
/// application, in a QTreeView.
///
/// A row is a scope, in the order in which the scopes of its parent came. A column is a property
/// that is found by name from within each scope; the cells follow it, and the user edits them with
/// the property's validation. Where a scope has no such source, one of an outer scope counts, as
/// for every bind. Rows come and go with their scopes. A scope that goes leaves the model while its
/// sources can still be found.
///
/// The model, the views and the scopes end in any order, on the thread of the tree; when the upper
/// scope has ended, the model has no rows. What a getter or a validator throws goes to the failure
/// handler; such a cell is empty, and such an edit is refused.
///
///   Qt6::ScopeTreeModel model(application, L"document,page", {{L"Page", L"Title"}});
///   tree->setModel(&model);
///   connect(tree, &QTreeView::activated, [&](auto& index) { Open(model.ScopeAt(index)); });
#pragma once

#include <QAbstractItemModel>
#include <cstdint>
#include <memory>
#include <vector>

#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/lists/ScopeList.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Framework {
class AnyBind;
}  // namespace DataBinding::Framework

namespace DataBinding::Qt6 {

/// Describes a column of a ScopeTreeModel.
struct ScopeColumn {
  /// The source, as it is found from within each scope, and its property.
  ///@{
  VtrString source;
  VtrString property;
  ///@}
  /// The text of the header; the name of the property where it is empty.
  QString header = {};
  /// The user does not edit a read-only column.
  bool isReadOnly = false;
};

class DATABINDING_QT6_API ScopeTreeModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  /// Shows the scopes that share a category with the comma-separated list; empty means all. A scope
  /// that does not is not shown, nor is anything within it.
  ScopeTreeModel(IDataSourceProvider& upper, const VtrString& categories,
                 std::vector<ScopeColumn> shownColumns, QObject* parent = nullptr);
  ~ScopeTreeModel() override;

  /// The scope of a row; null for an invalid index, and for a scope that has ended.
  [[nodiscard]] IDataSourceProvider* ScopeAt(const QModelIndex& index) const;

  /// These are the operations of every item model.
  ///@{
  [[nodiscard]] QModelIndex index(int row, int column,
                                  const QModelIndex& above = {}) const override;
  using QObject::parent;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& above = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role = Qt::DisplayRole) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  ///@}
  /// Sets the property of a cell. False where the value is refused.
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 Q_SIGNALS:
  /// A value that was to be set was refused. The reason is for people.
  void refused(const QModelIndex& index, const QString& reason);

 private:
  struct Node;

  [[nodiscard]] const Node& NodeOf(const QModelIndex& index) const;
  [[nodiscard]] Framework::AnyBind& CellOf(const QModelIndex& index) const;
  [[nodiscard]] QModelIndex IndexOf(const Node& node, int column = 0) const;
  [[nodiscard]] std::unique_ptr<Node> MakeNode(const Node* above, std::uint64_t number,
                                               IDataSourceProvider& scope);
  void Before(Node& node, const RowChange<ChildScope>& change);
  void After(Node& node, const RowChange<ChildScope>& change);
  void AddChild(Node& node, const ChildScope& row);

  VtrString wanted;
  std::vector<ScopeColumn> columns;
  std::unique_ptr<Node> root;
};

}  // namespace DataBinding::Qt6

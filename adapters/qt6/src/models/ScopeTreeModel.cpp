// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/models/ScopeTreeModel.h"

#include <QPersistentModelIndex>
#include <QPointer>
#include <algorithm>
#include <utility>
#include <vector>

#include "Cells.h"
#include "DataBinding/framework/AnyBind.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/details/Guard.h"

namespace DataBinding::Qt6 {

/// A scope of the tree. The upper scope has one, too, which has no index.
struct ScopeTreeModel::Node {
  Node(const Node* itsParent, std::uint64_t itsNumber, IDataSourceProvider& itsScope,
       const VtrString& categories)
      : above(itsParent),
        number(itsNumber),
        scope(itsScope.GetLiveness(), &itsScope),
        list(itsScope, categories) {}

  const Node* above;
  std::uint64_t number;  // of the row in the list above
  WeakPtr<IDataSourceProvider> scope;
  ScopeList list;
  std::vector<std::unique_ptr<Framework::AnyBind>> cells;  // of the columns
  std::vector<std::unique_ptr<Node>> children;
  Subscription ofList;
  std::vector<Subscription> ofCells;
};

ScopeTreeModel::ScopeTreeModel(IDataSourceProvider& upper, const VtrString& categories,
                               std::vector<ScopeColumn> shownColumns, QObject* itsParent)
    : QAbstractItemModel(itsParent),
      wanted(categories),
      columns(std::move(shownColumns)),
      root(MakeNode(nullptr, 0, upper)) {}

ScopeTreeModel::~ScopeTreeModel() = default;

/// Finding the cells may build sources that add scopes, so the list is read after that.
std::unique_ptr<ScopeTreeModel::Node> ScopeTreeModel::MakeNode(const Node* above,
                                                               std::uint64_t number,
                                                               IDataSourceProvider& scope) {
  auto made = std::make_unique<Node>(above, number, scope, wanted);
  Node* const node = made.get();
  for (int column = 0; above != nullptr && column < columnCount(); ++column) {
    const ScopeColumn& shown = columns[details::ToSize(column)];
    node->cells.push_back(
        std::make_unique<Framework::AnyBind>(&scope, shown.source, shown.property));
    node->ofCells.push_back(node->cells.back()->SubscribeToChanges([this, node, column] {
      const QModelIndex changed = IndexOf(*node, column);
      if (changed.isValid()) Q_EMIT dataChanged(changed, changed);
    }));
  }
  auto& rows = node->list.Rows();
  for (std::size_t i = 0; i < rows.Size(); ++i) AddChild(*node, rows[i]);
  node->ofList =
      rows.Observe({.before = [this, node](const auto& change) { Before(*node, change); },
                    .after = [this, node](const auto& change) { After(*node, change); }});
  return made;
}

/// Scopes that go leave the model while their sources can be found.
void ScopeTreeModel::Before(Node& node, const RowChange<ChildScope>& change) {
  if (change.Kind() != ListChangeKind::Removed) return;
  for (const ChildScope& row : change.Rows()) {
    const auto found = std::ranges::find(node.children, row.number, &Node::number);
    if (found == node.children.end()) continue;
    const int at = static_cast<int>(found - node.children.begin());
    beginRemoveRows(IndexOf(node), at, at);
    const std::unique_ptr<Node> removed = std::move(*found);
    node.children.erase(found);
    endRemoveRows();
  }
}

void ScopeTreeModel::After(Node& node, const RowChange<ChildScope>& change) {
  if (change.Kind() == ListChangeKind::Inserted) {
    for (const ChildScope& row : change.Rows()) AddChild(node, row);
  } else if (change.Kind() == ListChangeKind::Reset) {
    beginResetModel();
    node.children.clear();
    endResetModel();
  }
}

/// The list has its scopes in the order of their coming, so each is the last one. The node is made
/// before views are told, since making it may add scopes elsewhere.
void ScopeTreeModel::AddChild(Node& node, const ChildScope& row) {
  if (!row.scope) return;
  auto child = MakeNode(&node, row.number, *row.scope);
  const int at = static_cast<int>(node.children.size());
  const bool isShown = root != nullptr && (&node == root.get() || IndexOf(node).isValid());
  if (isShown) beginInsertRows(IndexOf(node), at, at);
  node.children.push_back(std::move(child));
  if (isShown) endInsertRows();
}

const ScopeTreeModel::Node& ScopeTreeModel::NodeOf(const QModelIndex& index) const {
  return index.isValid() ? *static_cast<const Node*>(index.constInternalPointer()) : *root;
}

/// Returns the index of a node; an invalid one for the upper scope, and for a node that is not
/// shown yet.
QModelIndex ScopeTreeModel::IndexOf(const Node& node, int column) const {
  if (node.above == nullptr) return {};
  const auto& rows = node.above->children;
  const auto found = std::ranges::find(rows, &node, &std::unique_ptr<Node>::get);
  return found == rows.end() ? QModelIndex()
                             : createIndex(static_cast<int>(found - rows.begin()), column, &node);
}

IDataSourceProvider* ScopeTreeModel::ScopeAt(const QModelIndex& index) const {
  return index.isValid() ? NodeOf(index).scope.Get() : nullptr;
}

QModelIndex ScopeTreeModel::index(int row, int column, const QModelIndex& above) const {
  if (!hasIndex(row, column, above)) return {};
  return createIndex(row, column, NodeOf(above).children[details::ToSize(row)].get());
}

QModelIndex ScopeTreeModel::parent(const QModelIndex& child) const {
  return child.isValid() ? IndexOf(*NodeOf(child).above) : QModelIndex();
}

/// Rows stand below the first column.
int ScopeTreeModel::rowCount(const QModelIndex& above) const {
  return above.column() > 0 ? 0 : static_cast<int>(NodeOf(above).children.size());
}

int ScopeTreeModel::columnCount(const QModelIndex& /*above*/) const {
  return static_cast<int>(columns.size());
}

Framework::AnyBind& ScopeTreeModel::CellOf(const QModelIndex& index) const {
  return *NodeOf(index).cells[details::ToSize(index.column())];
}

QVariant ScopeTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Framework::AnyBind& cell = CellOf(index);
  return details::GuardRead(L"cell of a model", [&] {
    return details::CellData(cell.Kind(), role,
                             [&] { return cell.Read().value.value_or(Value()); });
  });
}

QVariant ScopeTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool isOfColumn = orientation == Qt::Horizontal && section >= 0 && section < columnCount();
  if (!isOfColumn || role != Qt::DisplayRole) {
    return QAbstractItemModel::headerData(section, orientation, role);
  }
  const ScopeColumn& column = columns[details::ToSize(section)];
  return column.header.isEmpty() ? ToQString(column.property) : column.header;
}

Qt::ItemFlags ScopeTreeModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractItemModel::flags(index);
  if (!index.isValid() || columns[details::ToSize(index.column())].isReadOnly) return flags;
  const Framework::AnyBind& cell = CellOf(index);
  return cell.HasValue() && !cell.IsReadOnly() ? flags | details::EditFlag(cell.Kind()) : flags;
}

bool ScopeTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || columns[details::ToSize(index.column())].isReadOnly) return false;
  Framework::AnyBind& cell = CellOf(index);
  if (!value.isValid() || !details::IsEditRole(cell.Kind(), role)) return false;
  const QPointer<ScopeTreeModel> self(this);
  const QPersistentModelIndex edited(index);
  const SetResult result =
      details::GuardResult(columns[details::ToSize(index.column())].property, [&] {
        return details::SetCellData(
            value, role, [&](const Value& given) { return cell.Write(given); },
            [&](const VtrString& text) { return cell.WriteText(text); });
      });
  if (!result.IsAccepted() && self != nullptr) {
    Q_EMIT refused(edited, details::ReasonOf(result));
  }
  return result.IsAccepted();
}

}  // namespace DataBinding::Qt6

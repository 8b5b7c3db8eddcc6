// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/models/ScopeTreeModel.h"

#include <algorithm>
#include <utility>
#include <vector>

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
  std::unique_ptr<Framework::AnyBind> text;
  std::vector<std::unique_ptr<Node>> children;
  Subscription ofList;
  Subscription ofText;
};

ScopeTreeModel::ScopeTreeModel(IDataSourceProvider& upper, const VtrString& categories,
                               const VtrString& source, const VtrString& property,
                               QObject* itsParent)
    : QAbstractItemModel(itsParent),
      wanted(categories),
      sourceName(source),
      propertyName(property),
      root(MakeNode(nullptr, 0, upper)) {}

ScopeTreeModel::~ScopeTreeModel() = default;

/// Finding the text may build sources that add scopes, so the list is read after that.
std::unique_ptr<ScopeTreeModel::Node> ScopeTreeModel::MakeNode(const Node* above,
                                                               std::uint64_t number,
                                                               IDataSourceProvider& scope) {
  auto made = std::make_unique<Node>(above, number, scope, wanted);
  Node* const node = made.get();
  if (above != nullptr) {
    node->text = std::make_unique<Framework::AnyBind>(&scope, sourceName, propertyName);
    node->ofText = node->text->SubscribeToChanges([this, node] {
      const QModelIndex shown = IndexOf(*node);
      if (shown.isValid()) Q_EMIT dataChanged(shown, shown);
    });
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
QModelIndex ScopeTreeModel::IndexOf(const Node& node) const {
  if (node.above == nullptr) return {};
  const auto& rows = node.above->children;
  const auto found = std::ranges::find(rows, &node, &std::unique_ptr<Node>::get);
  return found == rows.end() ? QModelIndex()
                             : createIndex(static_cast<int>(found - rows.begin()), 0, &node);
}

IDataSourceProvider* ScopeTreeModel::ScopeAt(const QModelIndex& index) const {
  return index.isValid() ? NodeOf(index).scope.Get() : nullptr;
}

QModelIndex ScopeTreeModel::index(int row, int column, const QModelIndex& above) const {
  if (column != 0 || row < 0 || row >= rowCount(above)) return {};
  return createIndex(row, 0, NodeOf(above).children[static_cast<std::size_t>(row)].get());
}

QModelIndex ScopeTreeModel::parent(const QModelIndex& child) const {
  return child.isValid() ? IndexOf(*NodeOf(child).above) : QModelIndex();
}

int ScopeTreeModel::rowCount(const QModelIndex& above) const {
  return static_cast<int>(NodeOf(above).children.size());
}

int ScopeTreeModel::columnCount(const QModelIndex& /*above*/) const { return 1; }

QVariant ScopeTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  QString shown;
  details::Guard(propertyName, [&] {
    const auto text = NodeOf(index).text->ReadText();
    if (text) shown = ToQString(*text);
  });
  return shown;
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// A ScopeNode watches one object for the scopes: it keeps the scope that was set on the object,
/// and the functions that follow the object's scope.
///
/// It is a child of its object. Each object that has a node has parents that have nodes, so that
/// the move of any of them is seen, and telling a subtree may pass over objects without a node.
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "ScopeEnd.h"

namespace DataBinding::Qt6 {

class ScopeNode final : public QObject {
 public:
  using Follower = std::function<void(IDataSourceProvider*)>;

  /// Returns the node of the object, or null.
  [[nodiscard]] static ScopeNode* Find(const QObject* object);
  /// Returns the node of the object, and makes it and those of the parents where they are missing.
  static ScopeNode& Of(QObject& object);
  /// Tells the followers of the object and of what stands within it where their scope has changed.
  static void Tell(QObject& object);

  ScopeNode(const ScopeNode&) = delete;
  ScopeNode& operator=(const ScopeNode&) = delete;
  ~ScopeNode() override;

  /// Sets the scope of the object itself, or takes it back, and tells.
  void Set(IDataSourceProvider* provider);
  /// Returns the scope that was set here, which may have ended, or null.
  [[nodiscard]] const ScopeEnd* Own() const { return own.get(); }
  void Follow(Follower follower);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  explicit ScopeNode(QObject& watched);
  /// Returns true where the scope has changed and the object is still there.
  [[nodiscard]] bool TellFollowers();

  std::unique_ptr<ScopeEnd> own;
  IDataSourceProvider* told = nullptr;
  std::vector<std::shared_ptr<const Follower>> followers;
};

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
// This file holds the scopes of widgets. The nodes have no links among each other: they are found
// by their objects, whose own tree says what stands within what.

#include "DataBindingQt6/scopes/Scope.h"

#include <QChildEvent>
#include <QHash>
#include <QPointer>
#include <utility>

#include "DataBindingQt6/values/details/Guard.h"
#include "ScopeNode.h"

namespace DataBinding::Qt6 {

namespace {

/// The table is never given back, because objects with static lifetime may end after it would.
QHash<const QObject*, ScopeNode*>& Nodes() {
  static auto& nodes = *new QHash<const QObject*, ScopeNode*>;
  return nodes;
}

bool CanHaveMoved(QEvent::Type type) {
  return type == QEvent::ParentChange || type == QEvent::Polish || type == QEvent::Show;
}

}  // namespace

ScopeNode::ScopeNode(QObject& watched) : QObject(&watched), told(ScopeOf(&watched)) {
  Nodes().insert(&watched, this);
  watched.installEventFilter(this);
}

ScopeNode::~ScopeNode() { Nodes().remove(parent()); }

ScopeNode* ScopeNode::Find(const QObject* object) { return Nodes().value(object); }

ScopeNode& ScopeNode::Of(QObject& object) {
  for (QObject* at = &object; at != nullptr; at = at->parent()) {
    if (Find(at) == nullptr) new ScopeNode(*at);  // it belongs to its object
  }
  return *Find(&object);
}

void ScopeNode::Set(IDataSourceProvider* provider) {
  QObject& object = *parent();
  own = provider == nullptr
            ? nullptr
            : std::make_unique<ScopeEnd>(*provider, [&object] { ScopeNode::Tell(object); });
  Tell(object);
}

void ScopeNode::Follow(Follower follower) {
  const auto shared = std::make_shared<const Follower>(std::move(follower));
  followers.push_back(shared);
  (*shared)(told);
}

void ScopeNode::Tell(QObject& object) {
  ScopeNode* const node = Find(&object);
  if (node == nullptr || !node->TellFollowers()) return;
  const QPointer<QObject> alive(&object);
  std::vector<QPointer<QObject>> within;
  for (QObject* child : object.children()) {
    if (Find(child) != nullptr) within.emplace_back(child);
  }
  for (const auto& child : within) {
    if (alive && child && child->parent() == &object) Tell(*child);
  }
}

bool ScopeNode::TellFollowers() {
  IDataSourceProvider* const scope = ScopeOf(parent());
  if (scope == std::exchange(told, scope)) return false;
  const QPointer<QObject> alive(this);
  const std::size_t size = followers.size();
  for (std::size_t i = 0; i < size; ++i) {
    const auto follower = followers[i];
    details::Guard(L"scope of a widget", [&] { (*follower)(scope); });
    // A follower may have set another scope, of which all have heard by now.
    if (!alive || told != scope) return false;
  }
  return true;
}

bool ScopeNode::eventFilter(QObject* watched, QEvent* event) {
  const QPointer<QObject> alive(watched);
  if (CanHaveMoved(event->type())) {
    Of(*watched);
    Tell(*watched);
  } else if (event->type() == QEvent::ChildAdded) {
    Tell(*static_cast<QChildEvent*>(event)->child());
  }
  return !alive;
}

void SetScope(QObject* object, IDataSourceProvider* provider) {
  if (object != nullptr) ScopeNode::Of(*object).Set(provider);
}

IDataSourceProvider* ScopeOf(const QObject* object) {
  for (; object != nullptr; object = object->parent()) {
    const ScopeNode* const node = ScopeNode::Find(object);
    if (node != nullptr && node->Own() != nullptr) return node->Own()->Provider();
  }
  return nullptr;
}

void FollowScope(QObject* object, std::function<void(IDataSourceProvider*)> follow) {
  if (object != nullptr && follow) ScopeNode::Of(*object).Follow(std::move(follow));
}

}  // namespace DataBinding::Qt6

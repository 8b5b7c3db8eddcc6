// SPDX-License-Identifier: Apache-2.0
// This file holds a provider's place in the tree: its parent, its children, and who is told that
// children come and go. A callback that is told may change the tree, and may end the provider or
// the child, so nothing is taken for granted after a call.

#include <algorithm>
#include <new>
#include <utility>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/details/Cancellation.h"
#include "DataBinding/foundation/details/VisitInOrder.h"

namespace DataBinding {

namespace {

/// Calls a callback, and reports what it throws.
DATABINDING_CATCHES_CANCELLATION void CallGuarded(
    const IDataSourceProvider::ChildCallback& callback, IDataSourceProvider& child,
    ChildChange change) {
  try {
    callback(child, change);
  }
  DATABINDING_PASS_CANCELLATION catch (...) {
    details::ReportFailure(L"child scopes", std::current_exception());
  }
}

}  // namespace

void DataSourceProvider::SetParent(IDataSourceProvider* newParent) {
  const auto alive = GetLiveness();
  const auto isParentThere =
      newParent == nullptr ? details::WeakReference() : newParent->GetLiveness();
  if (parent != nullptr) RemoveChildFrom(*parent, this);
  if (!alive.IsValid()) return;
  parent = isParentThere.IsValid() ? newParent : nullptr;
  if (parent != nullptr) AddChildTo(*parent, this);
}

void DataSourceProvider::AddChild(IDataSourceProvider* child) {
  if (!children.try_emplace(child, Child{lastChild + 1}).second) return;
  calls.childObservers.Call({child, ++lastChild, ChildChange::Came});
}

void DataSourceProvider::RemoveChild(IDataSourceProvider* child) {
  const auto found = children.find(child);
  if (found == children.end()) return;
  const auto alive = GetLiveness();
  const std::uint64_t number = found->second.number;
  NoteGoingChild(child);
  // A callback may have taken the child off, and added another one at the same address.
  if (alive.IsValid() && IsChild(child, number)) children.erase(child);
}

/// Tells that a child goes. If a callback has the child end, or leave in another way, that is told
/// within this call to those who have not heard it yet, and the child is gone afterwards.
void DataSourceProvider::NoteGoingChild(IDataSourceProvider* child) {
  const auto found = children.find(child);
  if (found == children.end() || found->second.isGoing) return;
  const auto alive = GetLiveness();
  const std::uint64_t number = found->second.number;
  calls.childObservers.Call({child, number, ChildChange::Goes});
  if (alive.IsValid() && IsChild(child, number)) children.at(child).isGoing = true;
}

bool DataSourceProvider::IsChild(IDataSourceProvider* child, std::uint64_t number) const {
  const auto found = children.find(child);
  return found != children.end() && found->second.number == number;
}

/// The callback does not hear of a child that has left meanwhile, nor once more of the child of
/// which it is just being told.
Subscription DataSourceProvider::ObserveChildren(const ChildCallback& callback) {
  if (!callback) return {};
  const auto tell = [this, callback, telling = ChildNews{}](const ChildNews& news) mutable {
    const bool isKnown = news.number == telling.number && news.change == telling.change;
    if (isKnown || !IsChild(news.child, news.number)) return;
    const ScopedValue now(telling, news);
    CallGuarded(callback, *news.child, news.change);
  };
  return calls.childObservers.Add(tell);
}

/// Tells those who observe the children that they go, because this scope ends. The number of rounds
/// is limited, because a callback might always add another child.
void DataSourceProvider::TellThatChildrenGo() {
  const auto alive = GetLiveness();
  const auto isUntold = [](const auto& entry) { return !entry.second.isGoing; };
  for (int round = 0; round < 10 && alive.IsValid() && std::ranges::any_of(children, isUntold);
       ++round) {
    VisitChildren([this](IDataSourceProvider& child) { NoteGoingChild(&child); });
  }
}

/// Leaves the tree. The parent has told of this before, unless the provider has come to it since.
void DataSourceProvider::LeaveTree() {
  const auto alive = GetLiveness();
  listeners.clear();
  waiting.clear();
  if (parent != nullptr) RemoveChildFrom(*parent, this);
  if (!alive.IsValid()) return;
  parent = nullptr;
  for (const auto& child : std::exchange(children, {})) SetParentOf(*child.first, parent);
  children.clear();
  shutDown = true;
}

void DataSourceProvider::VisitChildren(
    const std::function<void(IDataSourceProvider&)>& visit) const {
  const auto alive = GetLiveness();
  const auto visitOne = [&](IDataSourceProvider* child, const Child& known) {
    if (IsChild(child, known.number) && !children.at(child).isGoing) visit(*child);
    return alive.IsValid();
  };
  std::vector<std::pair<IDataSourceProvider*, Child>> inOrder;
  try {
    inOrder.assign(children.begin(), children.end());
  } catch (const std::bad_alloc&) {
    return VisitInOrder(children, visitOne);  // in no order, for want of memory
  }
  std::ranges::sort(inOrder, {}, [](const auto& entry) { return entry.second.number; });
  for (const auto& [child, known] : inOrder) {
    if (!visitOne(child, known)) return;
  }
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/ScopeList.h"

namespace DataBinding {

ScopeList::ScopeList(IDataSourceProvider& scope, const VtrString& categories) : wanted(categories) {
  const auto follow = [this](IDataSourceProvider& child, ChildChange change) {
    Follow(child, change);
  };
  scope.VisitChildren([&](IDataSourceProvider& child) { follow(child, ChildChange::Came); });
  ofChildren = scope.ObserveChildren(follow);
}

ScopeList::~ScopeList() = default;

/// A scope may be told as going although it was not told as coming. What the list tells may end
/// this object.
void ScopeList::Follow(IDataSourceProvider& child, ChildChange change) {
  if (change == ChildChange::Goes) {
    const auto gone = numbers.extract(&child);
    if (!gone.empty()) rows.RemoveKey(gone.mapped());
  } else if (wanted.IsEmpty() || child.MatchCategory(wanted)) {
    numbers[&child] = ++last;
    rows.Insert(rows.Size(), ChildScope{last, {child.GetLiveness(), &child}});
  }
}

}  // namespace DataBinding

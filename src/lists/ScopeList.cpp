// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/ScopeList.h"

#include <utility>

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
  const auto alive = rows.Liveness();
  if (change == ChildChange::Goes) late.insert(numbers.extract(&child));
  RemoveLate();
  const bool isWanted = change == ChildChange::Came && alive.IsValid() &&
                        (wanted.IsEmpty() || child.MatchCategory(wanted));
  if (!isWanted) return;
  numbers[&child] = ++last;
  rows.Insert(rows.Size(), ChildScope{last, {child.GetLiveness(), &child}});
}

/// Removes the rows of scopes that have gone. A row that cannot be removed stays for the next time.
void ScopeList::RemoveLate() {
  const auto alive = rows.Liveness();
  while (alive.IsValid() && !late.empty()) {
    auto one = late.extract(late.begin());
    try {
      rows.RemoveKey(one.mapped());
    } catch (...) {
      late.insert(std::move(one));
      throw;
    }
  }
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include "ScopeRows.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Sysmon {

ScopeRows::ScopeRows(IDataSourceProvider& rootScope, const RowKind& rowKind)
    : root(rootScope), kind(rowKind) {
  AddDataListener(kind.announcer, kind.event, [this] { isStale = true; });
  SetDataSourceProvider(&root);
}

const std::vector<ScopeRows::Row>& ScopeRows::Sorted() {
  if (std::exchange(isStale, false)) Gather();
  std::ranges::sort(rows,
                    [this](const Row& left, const Row& right) { return Precedes(*left, *right); });
  return rows;
}

void ScopeRows::SortBy(std::size_t column, bool isDescending) {
  sortColumn = column;
  descending = isDescending;
}

/// Removes the rows of scopes that have ended, and adds rows for new scopes.
void ScopeRows::Gather() {
  std::erase_if(rows, [](const Row& row) { return row->Scope() == nullptr; });
  std::set<const IDataSourceProvider*> known;
  for (const Row& row : rows) known.insert(row->Scope());
  root.VisitChildren([&](IDataSourceProvider& scope) {
    if (!scope.MatchCategory(kind.category) || known.contains(&scope)) return;
    std::vector<Watch::Name> names;
    for (const Column& column : kind.columns) names.push_back({kind.source, column.property});
    rows.push_back(std::make_shared<Watch>(scope, std::move(names)));
  });
}

bool ScopeRows::Precedes(const Watch& left, const Watch& right) const {
  const auto& first = (descending ? right : left).At(sortColumn);
  const auto& second = (descending ? left : right).At(sortColumn);
  if (first != second) return first < second;
  return left.At(0) < right.At(0);
}

}  // namespace Sysmon

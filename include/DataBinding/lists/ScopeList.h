// SPDX-License-Identifier: Apache-2.0
/// A ScopeList is the list of the child scopes of one category, in the order in which they came. A
/// view that shows a row for each of them needs no event that announces them.
///
/// A scope that goes leaves the list when its sources can still be found (ObserveChildren), unless
/// the list is just telling another change: then it leaves after that. So a row has a weak pointer.
/// When the scope that is listed ends, all rows go. Without memory a scope that comes is not
/// listed, and the row of one that goes stays until the next scope comes or goes; the failure
/// handler is told.
///
/// The list and the scopes end in any order, on the thread of the tree.
///
///   ScopeList documents(application, L"document");
///   const Subscription seen = documents.Rows().Observe({.after = ...});
#pragma once

#include <cstdint>
#include <map>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/List.h"

namespace DataBinding {

/// A row of a ScopeList.
struct ChildScope {
  /// Grows in the order in which the scopes came.
  std::uint64_t number = 0;
  /// Is null once the scope has ended.
  WeakPtr<IDataSourceProvider> scope;
};
/// Names the fields of a row.
constexpr auto FieldsOf(const ChildScope* /*row*/) {
  return Fields(Key(L"Number", &ChildScope::number), Field(L"Scope", &ChildScope::scope));
}

class DATABINDING_API ScopeList {
 public:
  /// Lists the children that share a category with the comma-separated list; empty means all.
  ScopeList(IDataSourceProvider& scope, const VtrString& categories);
  ScopeList(const ScopeList&) = delete;
  ScopeList& operator=(const ScopeList&) = delete;
  ~ScopeList();

  /// The list, which others read, observe, sort, filter and choose from.
  [[nodiscard]] ReadableList<ChildScope>& Rows() noexcept { return rows; }

 private:
  void Follow(IDataSourceProvider& child, ChildChange change);
  void RemoveLate();

  VtrString wanted;
  std::uint64_t last = 0;
  std::map<const IDataSourceProvider*, std::uint64_t> numbers;
  /// Holds those of scopes that have gone, as long as their rows have not.
  std::multimap<const IDataSourceProvider*, std::uint64_t> late;
  ListData<ChildScope> rows;
  Subscription ofChildren;
};

}  // namespace DataBinding

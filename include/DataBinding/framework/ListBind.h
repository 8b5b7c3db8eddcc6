// SPDX-License-Identifier: Apache-2.0
/// A ListBind finds a list of a data source by name and follows it wherever it goes. It is a list
/// itself: it is read and observed, sorted, filtered and chosen from like the one that it has
/// found.
///
/// Where it looks, and when it changes over to another source, is as for a DataBind (DataBind.h).
/// When another list takes the place of the one that is shown, as long as both live, the bind tells
/// how the new content differs from the old one: rows of the same key stay the same rows. When the
/// list goes, all rows are removed while they can be read; a selection keeps their keys and chooses
/// them again when a list comes that has them. Rows that another list is to bring wait while one of
/// the lists tells a change; rows that go do not.
///
/// A row has an id of the bind's own. A bind changes nothing by itself, but its cells are set, and
/// a CurrentRow over it edits the row, where the list may be changed. The bind, its scopes, lists,
/// views and observers end in any order, also within each other's calls. It stays at its address,
/// and is used on the thread of the provider tree.
///
///   Framework::ListBind<Process> shown(&scope, L"Machine", L"Processes");
///   SortedList<Process> busiest(shown, By(&Process::cpu, Order::Descending));
#pragma once

#include "DataBinding/framework/details/ListConnection.h"
#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/ReadableList.h"

namespace DataBinding::Framework {

template <AnyRow Row>
class ListBind final : public details::BoundList<ReadableList<Row>> {
 public:
  /// Takes the names of a data context, a source and its list. The bind is connected to nothing
  /// until Connect.
  ListBind(const VtrString& context, const VtrString& source, const VtrString& list)
      : details::BoundList<ReadableList<Row>>(context, source, list, &details::TableOf<Row>()) {}
  /// Takes the names and connects at once.
  ListBind(IDataSourceProvider* provider, const VtrString& context, const VtrString& source,
           const VtrString& list)
      : ListBind(context, source, list) {
    this->Connect(provider);
  }
  /// Does the same, beginning at the given scope itself.
  ListBind(IDataSourceProvider* provider, const VtrString& source, const VtrString& list)
      : ListBind(provider, VtrString(), source, list) {}
};

}  // namespace DataBinding::Framework

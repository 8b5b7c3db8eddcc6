// SPDX-License-Identifier: Apache-2.0
/// A CurrentRow shows the row that a selection has chosen last as a data source of a scope, so that
/// a form binds to the fields of the row by their names.
///
/// It is one source from beginning to end. Its properties are the fields, and have no value while
/// nothing is chosen ("no row is chosen"), so a name never falls through to an outer scope. When
/// another row is chosen, all fields are announced, and binds say BindChange::Replaced. What is set
/// by a property goes through the list's Update and its validators, and Check says what that would
/// answer: a field that is read-only, and a list that only its source changes, refuse it. While the
/// list tells a change, an update waits and its result says so.
///
/// The scope owns the source. The CurrentRow takes it out of the scope and ends it. It, the scope,
/// the selection and the list end in any order; without a selection nothing is chosen. It may be
/// made and ended while the scope connects listeners, and then adds or ends the source after that.
/// All of this belongs to the tree's thread.
///
///   CurrentRow current(&scope, L"Process", chosen);
///   Framework::DataBind<VtrString> name(&scope, L"Process", L"Name");
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/Selection.h"
#include "DataBinding/lists/details/RowSource.h"

namespace DataBinding {

namespace details {

/// The part of a CurrentRow that does not depend on the row type: its source is in the scope for as
/// long as it lives.
class DATABINDING_API CurrentRowBase {
 public:
  CurrentRowBase(const CurrentRowBase&) = delete;
  CurrentRowBase& operator=(const CurrentRowBase&) = delete;

  /// Returns the source, or null once the scope has ended it.
  [[nodiscard]] IDataSource* Source() const noexcept { return source.Get(); }

 protected:
  /// A null scope has no use for the source, which ends at once.
  CurrentRowBase(IDataSourceProvider* itsScope, DataSourcePtr<RowSource> made);
  ~CurrentRowBase();

 private:
  WeakReference isScopeThere;
  IDataSourceProvider* scope;
  WeakPtr<IDataSource> source;
};

}  // namespace details

template <class Row>
class CurrentRow final : public details::CurrentRowBase {
 public:
  /// Adds a source of this name to the scope.
  CurrentRow(IDataSourceProvider* itsScope, const VtrString& name, Selection<Row>& chosen)
      : CurrentRowBase(itsScope,
                       MakeDataSource<details::TypedRowSource<Row>>(itsScope, name, chosen)) {}
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// An AnyListBind is a ListBind for code that does not know the row type, such as the item model of
/// a toolkit: it finds a list by name, whatever its rows are, and reads their fields as Values.
///
/// It follows lists as a ListBind does (ListBind.h). A list of another row type takes the place of
/// all rows; ask for the fields anew then. While there is no list there is no row type. Nothing of
/// a list or its row type is kept when the list goes, so a plug-in may be unloaded when its sources
/// have ended.
///
///   Framework::AnyListBind table(&scope, L"Machine", L"Processes");
///   for (std::size_t i = 0; i < table.FieldCount(); ++i) header.Add(table.FieldName(i));
///   const Value name = table.Cell(0, *table.FieldNumber(L"Name"));
#pragma once

#include "DataBinding/framework/details/ListConnection.h"
#include "DataBinding/lists/AnyList.h"

namespace DataBinding::Framework {

class AnyListBind final : public details::BoundList<AnyList> {
 public:
  /// Takes the names of a data context, a source and its list. The bind is connected to nothing
  /// until Connect.
  AnyListBind(const VtrString& context, const VtrString& source, const VtrString& list)
      : BoundList(context, source, list, nullptr) {}
  /// Takes the names and connects at once.
  AnyListBind(IDataSourceProvider* provider, const VtrString& context, const VtrString& source,
              const VtrString& list)
      : AnyListBind(context, source, list) {
    Connect(provider);
  }
  /// Does the same, beginning at the given scope itself.
  AnyListBind(IDataSourceProvider* provider, const VtrString& source, const VtrString& list)
      : AnyListBind(provider, VtrString(), source, list) {}
  ~AnyListBind() override { TellEnd(&Empty); }

  /// Returns what is known of the rows of the list that is shown, or null while there is none.
  [[nodiscard]] const details::RowTable* Table() const noexcept override {
    return rows.List() == nullptr ? nullptr : rows.List()->Table();
  }
};

}  // namespace DataBinding::Framework

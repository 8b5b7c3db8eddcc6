// SPDX-License-Identifier: Apache-2.0
/// An AnyList is a list, a view or a bind to a list for code that does not know its row type: it
/// has rows, fields with names, and tells its changes.
///
/// A row has an id, by which it is known as long as it is in the list, wherever it stands and
/// whatever changes in it. The views of a list have the ids of the list. A list belongs to the
/// thread that owns the provider tree.
#pragma once

#include <cstddef>
#include <optional>

#include "DataBinding/Export.h"
#include "DataBinding/lists/ListChange.h"
#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/Value.h"

namespace DataBinding {

class DATABINDING_API AnyList : public details::ListNode {
 public:
  /// Returns true while there is no row.
  [[nodiscard]] bool IsEmpty() const noexcept { return Size() == 0; }
  /// The id of the row at an index; nothing beyond the end.
  [[nodiscard]] std::optional<RowId> IdAt(std::size_t index) const noexcept;
  /// The place of a row; nothing for a row that is not in the list.
  [[nodiscard]] std::optional<std::size_t> IndexOf(RowId id) const noexcept;
  /// Returns true for the id of a row that is in the list.
  [[nodiscard]] bool Contains(RowId id) const noexcept { return IndexOf(id).has_value(); }

  /// The type of the rows; runtime_type<void> while that is not known.
  [[nodiscard]] const runtime_type_base& RowType() const noexcept;
  /// Returns the number of fields; 0 while the row type is not known.
  [[nodiscard]] std::size_t FieldCount() const noexcept;
  /// The name of a field by its number; empty beyond the end.
  [[nodiscard]] VtrString FieldName(std::size_t number) const;
  /// The number of a field by its name; nothing for a name that no field has.
  [[nodiscard]] std::optional<std::size_t> FieldNumber(const VtrString& name) const noexcept;
  /// Says which kind of value a field has by its form; nothing where it has none, and beyond the
  /// end.
  [[nodiscard]] ValueKind FieldKind(std::size_t number) const noexcept;
  /// Returns true for a field whose cells SetCell sets, if the validator accepts the value.
  [[nodiscard]] bool CanSetField(std::size_t number) const;

  /// The value of a cell; nothing where there is no such cell or the field's type has no form.
  [[nodiscard]] Value Cell(std::size_t index, std::size_t field) const {
    const auto [row, table] = RowAtPlace(index);
    if (row == nullptr || table == nullptr || field >= table->fields.size()) return {};
    return table->fields[field].get(row);
  }
  /// Sets a cell as an Update of its row would. The field's validator is asked, and a field or list
  /// that is read-only refuses the value. The result's text names the list, the field and what is
  /// wrong.
  ///@{
  SetResult SetCell(std::size_t index, std::size_t field, const Value& value);
  SetResult SetCell(std::size_t index, const VtrString& field, const Value& value);
  ///@}
  /// Does the same with a text that was typed, which is read as a value of the field's kind.
  SetResult SetCellText(std::size_t index, std::size_t field, const VtrString& text);

  /// Calls the observer's functions before and after each change, until the subscription ends. An
  /// observer that begins within the first call of a change is told that change; one that begins
  /// within the second call hears the next change.
  Subscription Observe(ListObserver<ListChange> observer);

 protected:
  AnyList() = default;
  ~AnyList() override = default;
};

}  // namespace DataBinding

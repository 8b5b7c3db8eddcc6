// SPDX-License-Identifier: Apache-2.0
/// An AnySortedList shows the rows of any list in an order that is chosen while the program runs,
/// for code that does not know the row type: a table that is sorted by a click on a header.
///
/// It begins with the order of the list, and SortBy sorts it by a field: numbers as numbers, texts
/// as texts, false before true. What is not a number, and then nothing, stands last in either
/// direction. Rows that are equal stand in the order of the list, so a field whose type has no form
/// leaves that order as it is. Only a change of that field moves a row.
///
/// All else is as for a SortedList (SortedList.h): it holds numbers of rows, follows each change,
/// passes SetCell and MoveRows on, and is empty when its list has ended.
///
///   AnySortedList shown(table);
///   if (!shown.SortBy(L"Cpu", Order::Descending)) Report(L"There is no such field.");
///   shown.KeepOrderOfList();
#pragma once

#include <cstddef>

#include "DataBinding/Export.h"
#include "DataBinding/lists/AnyList.h"
#include "DataBinding/lists/Order.h"
#include "DataBinding/lists/details/SortedView.h"
#include "DataBinding/lists/details/ViewOf.h"

namespace DataBinding {

class DATABINDING_API AnySortedList final : public details::ViewOf<AnyList, details::SortedView> {
 public:
  /// Shows the rows in the order of the list.
  explicit AnySortedList(AnyList& list);
  ~AnySortedList() override;

  /// Sorts by a field, which is told as one Reordered. False, and no change, where the rows have no
  /// such field. Called while the list or a view of it tells a change, it waits until that was told
  /// to all. When an AnyListBind changes over to rows of another type, the field of the same number
  /// counts until the next call.
  ///@{
  bool SortBy(std::size_t field, Order order = Order::Ascending);
  bool SortBy(const VtrString& field, Order order = Order::Ascending);
  ///@}
  /// Shows the order of the list again. Waits as SortBy does.
  void KeepOrderOfList();

  /// Moves rows of the list, as long as its order is shown; refuses it while the view is sorted,
  /// and while a change is told.
  SetResult MoveRows(std::size_t from, std::size_t count, std::size_t to) override;
  /// Returns true while the order of a list is shown that lets others move its rows. MoveRows still
  /// refuses while a change is told.
  [[nodiscard]] bool CanMoveRows() const override;
  /// Returns what is known of the rows of the list, or null while nothing is known.
  [[nodiscard]] const details::RowTable* Table() const noexcept override { return view.Table(); }
};

}  // namespace DataBinding

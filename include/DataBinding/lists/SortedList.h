// SPDX-License-Identifier: Apache-2.0
/// A SortedList shows the rows of a list, of a view or of a bind to a list in an order of its own,
/// and follows each change.
///
/// The order is that of By(), or any function that says whether the first of two rows stands before
/// the second. Rows that it finds equal stand in the order of the list. It goes by the two rows and
/// nothing else: where it reads anything else that changes, call SortBy again.
///
/// A view holds numbers of rows and no copies, 8 to 12 bytes a row. A row whose fields have changed
/// is moved in O(log n); many rows that change their places together are told as one Reordered. A
/// row whose comparison throws stands at the end until it changes, and the failure handler is told.
/// The rows are sorted when the view is read or observed for the first time; a view that cannot get
/// the memory for that tells the failure handler and reads as empty.
///
/// A view belongs to the thread of its list. Either may end first, in any call: a view whose list
/// has ended is empty.
///
///   SortedList busiest(processes, By(&Process::cpu, Order::Descending).Then(&Process::name));
///   busiest.SortBy(By(&Process::name));
#pragma once

#include <utility>

#include "DataBinding/lists/Order.h"
#include "DataBinding/lists/ReadableList.h"
#include "DataBinding/lists/details/SortedView.h"
#include "DataBinding/lists/details/ViewOf.h"

namespace DataBinding {

template <class Row>
class SortedList final : public details::ViewOf<ReadableList<Row>, details::SortedView> {
 public:
  /// Shows the rows in the order of the function, which says whether one row stands before another.
  template <std::predicate<const Row&, const Row&> Less>
  SortedList(ReadableList<Row>& list, Less less)
      : details::ViewOf<ReadableList<Row>, details::SortedView>(list, Sorting(std::move(less))) {}
  ~SortedList() override { this->view.End(); }

  /// Sorts by another function, which is told as one Reordered. Called while the list or a view of
  /// it tells a change, it waits until that was told to all.
  template <std::predicate<const Row&, const Row&> Less>
  void SortBy(Less less) {
    this->view.SortBy(Sorting(std::move(less)));
  }

 private:
  template <class Less>
  [[nodiscard]] static details::RowSorting Sorting(Less less) {
    auto number = Number(less);
    return {[less = std::move(less)](const void* one, const void* other) -> bool {
              return less(*static_cast<const Row*>(one), *static_cast<const Row*>(other));
            },
            std::move(number), details::RowSorting::anything};
  }
  template <class Less>
  [[nodiscard]] static details::RowNumber Number(const Less& /*less*/) {
    return {};
  }
  template <class Fields>
  [[nodiscard]] static details::RowNumber Number(const RowOrdering<Fields>& order) requires
      requires(const Row& row) {
    order.Number(row);
  }
  {
    return [order](const void* row) { return order.Number(*static_cast<const Row*>(row)); };
  }
};

/// The row type is that of the list, whatever the function takes.
template <class Row, class Less>
SortedList(ReadableList<Row>&, Less) -> SortedList<Row>;

}  // namespace DataBinding

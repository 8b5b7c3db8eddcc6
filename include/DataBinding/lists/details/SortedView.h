// SPDX-License-Identifier: Apache-2.0
/// A SortedView is a SortedList without its row type: it sorts the rows of a list by a function.
/// Where the function compares numbers first, many rows are sorted by these numbers, which takes a
/// fraction of the time of comparing the rows, and only rows of one number are compared.
///
/// Rows that the function finds equal stand in the order of the list. A row is found where it
/// stands, by its id; only rows that come or have changed are compared, with the others that stand
/// sorted. The function may throw, contradict itself, or go by something that has changed: then
/// rows stand in the wrong places, and nothing worse happens.
///
/// Data sources change before that is told, so a row may come to stand beside one that is about to
/// go elsewhere. Therefore, where a row leaves its place in a list of data sources, the neighbours
/// that it leaves are compared, and all rows are sorted anew if these stand the wrong way round.
/// Each pair of neighbours that have not changed since was compared in this way, or when one of
/// them was placed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/lists/details/ListView.h"

namespace DataBinding::details {

/// Says whether the first row stands before the second.
using RowCompare = RepeatingCallback<bool(const void* one, const void* other)>;
/// Returns a number for a row. Of two rows, the one with the lesser number stands first.
using RowNumber = RepeatingCallback<std::uint64_t(const void* row)>;

/// The functions that order rows. There may be none for numbers; where there is one, comparing goes
/// by them first. Without a function that compares, rows stand in the order of the list.
struct RowSorting {
  /// Stands for all fields, and for what is no field.
  static constexpr std::uint64_t anything = ~std::uint64_t{0};

  RowCompare compare = {};
  RowNumber number = {};
  /// The bits of the fields by which the functions go.
  std::uint64_t fields = 0;
};

class RowLess;

class DATABINDING_API SortedView final : public ListView {
 public:
  SortedView(ListNode& itsNode, ListNode& itsSource, void (*emptyNode)(ListNode& self),
             RowSorting functions);
  ~SortedView() = default;

  /// Sorts by other functions. Waits while the family tells a change.
  void SortBy(RowSorting functions);
  /// Returns true while the rows stand in another order than that of the list.
  [[nodiscard]] bool IsSorted() const noexcept { return sorting.compare.GetBindState() != nullptr; }

 private:
  void Evaluate() noexcept override;
  void Remove(const ListStep& step) noexcept override;
  void PassOn(const ListStep& step) noexcept override;
  void TakeTarget(const ListStep& step) noexcept override;
  void Insert(const ListStep& step) noexcept override;
  void Move(const ListStep& step) noexcept override;
  void AskChanged(const ListStep& step) noexcept override;

  void SortAnew(RowSorting functions);
  [[nodiscard]] std::size_t Sort(std::span<const RowId> ids) noexcept;
  template <class Lookup>
  [[nodiscard]] std::size_t PlaceSorted(std::size_t live, std::size_t sorted, std::size_t end,
                                        Lookup at) noexcept;
  void Replace(std::span<const RowId> ids, bool isContentNew) noexcept;
  bool ReplaceOne(RowId id, std::span<const RowId> loose) noexcept;
  [[nodiscard]] std::size_t FindPlace(RowId id, std::size_t from,
                                      std::span<const RowId> loose) noexcept;
  void ReplaceMany(std::span<const RowId> ids, bool isContentNew) noexcept;
  void TakeMarkedInOrderOfList(std::span<const RowId> ids) noexcept;
  void MergeLoose(std::size_t live) noexcept;
  void CheckGap(std::size_t at) noexcept;
  [[nodiscard]] bool AreRowsSources() const noexcept;
  [[nodiscard]] std::size_t CountMoves() noexcept;
  bool TellMoves() noexcept;
  [[nodiscard]] std::size_t Sorted() const noexcept { return order.Size() - aside; }

  RowSorting sorting;
  bool isSortDue = false;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "RowSort.h"

#include <algorithm>

namespace DataBinding::details {

namespace {

/// Merges two sorted ranges that stand side by side. A row whose comparison throws leaves its range
/// and is put behind both.
class Merge {
 public:
  Merge(std::span<ComparedRow> all, std::size_t middle, ComparedRow* spare,
        const RowLess& itsLess) noexcept
      : rows(all.data()),
        right(middle),
        end(all.size()),
        left(spare),
        leftEnd(spare + middle),
        less(itsLess) {}

  std::size_t Run() noexcept {
    if (IsInOrder()) return end;
    std::copy(rows, rows + right, left);
    while (left != leftEnd && right != end) Step();
    std::copy(left, leftEnd, rows + out);
    return end;
  }

 private:
  [[nodiscard]] bool IsInOrder() const noexcept {
    try {
      return !less(rows[right].row, rows[right - 1].row);
    } catch (...) {
      return false;  // the merging finds out which row it is
    }
  }
  void Step() noexcept {
    try {
      if (less(rows[right].row, left->row)) {
        rows[out++] = rows[right++];
      } else {
        rows[out++] = *left++;
      }
    } catch (...) {
      less.Report();
      DropOne();
    }
  }
  /// Drops the row that cannot even be compared with itself, or the right one.
  void DropOne() noexcept {
    ComparedRow dropped = rows[right];
    if (less.Accepts(dropped.row, false) && !less.Accepts(left->row, false)) {
      dropped = *left++;
      --right;
    }
    std::copy(rows + right + 1, rows + end, rows + right);
    rows[--end] = dropped;
  }

  ComparedRow* rows;
  std::size_t out = 0;
  std::size_t right;
  std::size_t end;  // behind it stand the dropped rows
  ComparedRow* left;
  ComparedRow* leftEnd;
  const RowLess& less;
};

}  // namespace

std::size_t SortRows(std::span<ComparedRow> rows, ComparedRow* spare,
                     const RowLess& less) noexcept {
  if (rows.size() < 2) return rows.size();
  const std::size_t half = rows.size() / 2;
  const std::size_t left = SortRows(rows.first(half), spare, less);
  const std::size_t right = SortRows(rows.subspan(half), spare, less);
  if (left < half) {
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(half);
    std::rotate(rows.begin() + static_cast<std::ptrdiff_t>(left), middle,
                middle + static_cast<std::ptrdiff_t>(right));
  }
  if (left == 0 || right == 0) return left + right;
  return Merge(rows.first(left + right), left, spare, less).Run();
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "RowSort.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

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

std::size_t SortByComparing(std::span<ComparedRow> rows, ComparedRow* spare,
                            const RowLess& less) noexcept {
  if (rows.size() < 2) return rows.size();
  const std::size_t half = rows.size() / 2;
  const std::size_t left = SortByComparing(rows.first(half), spare, less);
  const std::size_t right = SortByComparing(rows.subspan(half), spare, less);
  if (left < half) {
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(half);
    std::rotate(rows.begin() + static_cast<std::ptrdiff_t>(left), middle,
                middle + static_cast<std::ptrdiff_t>(right));
  }
  if (left == 0 || right == 0) return left + right;
  return Merge(rows.first(left + right), left, spare, less).Run();
}

/// Gets the numbers of rows. Returns false if the function threw.
bool TakeNumbers(std::span<ComparedRow> rows, const RowNumber& number) noexcept {
  const RowFunction<std::uint64_t(const void*)> numberOf(number);
  try {
    for (ComparedRow& row : rows) row.number = numberOf(row.row);
    return true;
  } catch (...) {
    return false;  // comparing finds out which row it is
  }
}

/// Distributes the rows by one byte of their numbers after the other, from the lowest one on, each
/// time keeping the order of those whose bytes are equal. A byte that all have in common is passed
/// over.
void SortByNumbers(std::span<ComparedRow> rows, ComparedRow* spare) noexcept {
  constexpr std::size_t bytes = sizeof(std::uint64_t);
  const auto byteIn = [](const ComparedRow& row, std::size_t byte) {
    return static_cast<std::uint8_t>(row.number >> 8 * byte);
  };
  std::array<std::array<std::size_t, 256>, bytes> places{};
  for (const ComparedRow& row : rows) {
    for (std::size_t byte = 0; byte < bytes; ++byte) ++places[byte][byteIn(row, byte)];
  }
  std::span<ComparedRow> from = rows;
  std::span<ComparedRow> to(spare, rows.size());
  for (std::size_t byte = 0; byte < bytes; ++byte) {
    auto& next = places[byte];
    if (next[byteIn(rows[0], byte)] == rows.size()) continue;
    std::exclusive_scan(next.begin(), next.end(), next.begin(), std::size_t{0});
    for (const ComparedRow& row : from) to[next[byteIn(row, byte)]++] = row;
    std::swap(from, to);
  }
  if (from.data() != rows.data()) std::ranges::copy(from, rows.begin());
}

/// Compares rows of the same number, which stand side by side.
std::size_t SortWithinNumbers(std::span<ComparedRow> rows, ComparedRow* spare,
                              const RowLess& less) noexcept {
  std::size_t live = rows.size();
  for (std::size_t first = 0; first < live;) {
    std::size_t end = first + 1;
    while (end < live && rows[end].number == rows[first].number) ++end;
    const std::size_t sorted =
        first + SortByComparing(rows.subspan(first, end - first), spare, less);
    if (sorted < end) {
      const auto at = [&](std::size_t i) { return rows.begin() + static_cast<std::ptrdiff_t>(i); };
      std::rotate(at(sorted), at(end), at(live));
    }
    live -= end - sorted;
    first = sorted;
  }
  return live;
}

}  // namespace

std::size_t SortRows(std::span<ComparedRow> rows, ComparedRow* spare, const RowLess& less,
                     const RowNumber& number) noexcept {
  constexpr std::size_t manyRows = 256;  // the places of the bytes take their time
  const bool hasNumbers = number.GetBindState() != nullptr;
  if (rows.size() < manyRows || !hasNumbers || !TakeNumbers(rows, number)) {
    return SortByComparing(rows, spare, less);
  }
  SortByNumbers(rows, spare);
  return SortWithinNumbers(rows, spare, less);
}

}  // namespace DataBinding::details

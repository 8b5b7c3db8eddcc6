// SPDX-License-Identifier: Apache-2.0
// Sorting rows by a function of the application, which may throw or contradict itself.
#pragma once

#include <cstddef>
#include <span>

#include "DataBinding/lists/details/SortedView.h"
#include "RowFunction.h"

namespace DataBinding::details {

/// Compares rows by an application's function.
class RowLess {
 public:
  RowLess(const RowCompare& compare, const ListNode& itsNode) noexcept
      : function(compare), node(itsNode) {}

  /// Says whether the first row stands before the second. Throws what the function throws.
  bool operator()(const void* one, const void* other) const { return function(one, other); }
  /// Says whether a row can be compared with itself, and so with others. Tells of it if asked to.
  [[nodiscard]] bool Accepts(const void* row, bool isToldOf = true) const noexcept {
    try {
      static_cast<void>(function(row, row));
      return true;
    } catch (...) {
      if (isToldOf) Report();
      return false;
    }
  }
  /// Tells the failure handler of the exception that is being handled.
  void Report() const noexcept { ReportOf(node); }

 private:
  RowFunction<bool(const void*, const void*)> function;
  const ListNode& node;
};

/// Sorts rows stably and answers how many are sorted. A row whose comparison threw stands behind
/// these. `spare` has room for as many rows. Nothing else than the rows is touched, whatever the
/// functions answer. The function for numbers may be null.
std::size_t SortRows(std::span<ComparedRow> rows, ComparedRow* spare, const RowLess& less,
                     const RowNumber& number) noexcept;

}  // namespace DataBinding::details

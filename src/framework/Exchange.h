// SPDX-License-Identifier: Apache-2.0
/// An Exchange is the plan by which the rows of one list take the place of those of another in a
/// bind: which rows are the same by their keys, and the steps that are told.
///
/// It is made when nothing has changed yet, which may throw, and stands on the stack while its
/// steps are told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "DataBinding/framework/details/BoundRows.h"

namespace DataBinding::details {

class BoundRows::Exchange {
 public:
  /// Plans for the list that is wanted.
  explicit Exchange(BoundRows& itsRows);
  /// Carries the plan out. Stops when the bind ends or is emptied meanwhile.
  void Run() noexcept;

 private:
  struct Match {
    RowId own;
    RowId theirs;
  };

  void MatchRows();
  void CompareRows();
  void FindRuns();
  void Reserve();
  void GiveIds() noexcept;
  bool TellChanged() noexcept;
  bool TellRemoved() noexcept;
  bool TellReordered() noexcept;
  bool TellInserted() noexcept;
  bool TellReset() noexcept;

  BoundRows& rows;
  AnyList& next;
  std::vector<RowId> before;  // the order of the bind as it is
  std::vector<RowId> after;   // the order as it will be; `none` for a new row, until it has an id
  std::vector<RowId> comes;   // the ids of the new list, in order
  std::vector<RowId> kept;    // of `after`, the rows that stay
  std::vector<RowId> added;
  std::vector<RowId> removed;
  std::vector<bool> stays;     // by the bind's ids
  std::vector<Match> matches;  // rows that stay
  std::vector<RowId> changed;  // those of them that differ
  std::vector<const void*> contents;
  std::vector<const void*> formerContents;
  std::uint64_t fields = 0;
  std::size_t runs = 0;
  bool isOrderKept = true;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
// A ListPlanner finds the steps that lead from one order of rows to another, and for a whole new
// list which of its rows are the ones that the list has.
//
// 1. Rows are matched by their keys: the j-th row of a key is the j-th one that the list has. The
//    row behind the last match is tried first, so that most rows need no look-up. Rows without keys
//    are matched at both ends, as far as they are equal, and between by their places.
// 2. Matched rows that differ become one Changed, which comes first.
// 3. Rows without a match go, last run first. Of those that stay, the longest run that already
//    stands in the right order is left alone, and the others move, first one first; the run is
//    found as by C. Schensted, "Longest increasing and decreasing subsequences", Canadian Journal
//    of Mathematics 13 (1961), 179-191. New rows come last, first one first. Neighbours do each of
//    these together.
// 4. Where that would be too many steps, a single Reset, or a Reordered, takes their place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "ListOperation.h"

namespace DataBinding::details {

class ListPlanner {
 public:
  ListPlanner(ListEngine& itsEngine, const ListEngine::State& from, ListOperation& to);

  /// Plans that the list has these rows.
  void Assign(const RowArray& rows);
  /// Plans that some rows stand together before the row at a place. Rows that have gone are left
  /// out.
  void MoveBefore(std::span<const RowId> rows, std::size_t place);

 private:
  /// Stands in `places` for a row that is new.
  static constexpr std::size_t isNew = RowOrder::nowhere;

  void MatchByKey(const RowArray& rows);
  [[nodiscard]] std::size_t FindMatch(const void* row);
  [[nodiscard]] RowId NextDouble(RowId first);
  void MatchByPlace(const RowArray& rows);
  [[nodiscard]] std::uint64_t Differing(std::size_t place, const void* row) const;
  void Match(std::size_t j, std::size_t place, std::uint64_t differing);
  void TakeRows(const RowArray& rows);

  void PlanOrder();
  [[nodiscard]] bool IsInOrder() const noexcept;
  void FindStaying();
  [[nodiscard]] std::size_t CountSteps() const;
  void AddRemovals();
  void AddMoves();
  void AddInsertions();
  /// Returns the end of a run that begins at an index, in which `joins(i)` says that i belongs to
  /// the run as i - 1 does.
  template <class Joins>
  [[nodiscard]] std::size_t EndOfRun(std::size_t first, std::size_t size, Joins joins) const;
  [[nodiscard]] bool MovesWithLast(std::size_t i) const noexcept;

  ListEngine& engine;
  const ListEngine::State& state;
  ListOperation& operation;
  RowReader reader;
  std::vector<RowId> before;         // the order as it is
  std::vector<RowId> after;          // the order as it will be
  std::vector<std::size_t> places;   // for each row of `after`, its place in `before`
  std::vector<std::size_t> changed;  // the indexes in `after` of the matched rows that differ
  std::vector<char> isKept;          // for each row of `before`
  // These three are found only where rows move.
  std::vector<std::size_t> kept;   // the indexes in `after` of the rows that are not new
  std::vector<std::size_t> ranks;  // for each row of `before`, how many kept ones stand before it
  std::vector<char> stays;         // for each of `kept`, whether it need not move
  std::size_t inPlace = 0;         // the rows whose place stays the same
  std::uint64_t fields = 0;
  /// The doubles of a key that have no match yet, the last one first.
  std::unordered_map<RowId, std::vector<RowId>> doubles;
};

}  // namespace DataBinding::details

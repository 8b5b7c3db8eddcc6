// SPDX-License-Identifier: Apache-2.0
// A ListOperation is one operation of a list as steps: first it is planned, and then it is carried
// out in its turn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "DataBinding/lists/details/ListEngine.h"

namespace DataBinding::details {

/// A list keeps the memory of an operation for the next one, but not that of one with more rows.
inline constexpr std::size_t mostKept = 256;

class ListOperation final : public ListTurn {
 public:
  explicit ListOperation(ListEngine& itsEngine) noexcept : engine(&itsEngine) {}

  // Planning. Nothing of it changes what can be read of the list.

  /// Moves a new row into a slot that was reserved; it belongs to the operation until that is
  /// submitted.
  RowId AddRow(void* row) noexcept;
  /// Reserves what AddRow and AddChange need.
  void ReserveRows(std::size_t rows, std::size_t changes);
  /// Notes what a row will be, which stands in the slot `other` of the engine's others. The
  /// operation owns that slot until it is submitted.
  void AddChange(RowId row, RowId other) noexcept;
  void DropLastChange() noexcept;
  void AddFields(std::uint64_t differing) noexcept { fields |= differing; }
  [[nodiscard]] std::uint64_t Fields() const noexcept { return fields; }
  /// Adds a step for rows that stand side by side.
  void AddStep(ListChangeKind kind, std::size_t at, std::span<const RowId> rows,
               std::size_t to = 0);
  /// Adds the step for all changed rows, if there are any.
  void AddChanges();
  /// Lets the steps refer to their rows, when there are no more to come.
  void Finish() noexcept;

  [[nodiscard]] std::span<const ListStep> Steps() const noexcept { return steps; }
  [[nodiscard]] std::span<const RowId> Added() const noexcept { return added; }
  [[nodiscard]] std::span<const RowId> Changed() const noexcept { return changed; }
  [[nodiscard]] std::span<const RowId> Others() const noexcept { return others; }
  /// The steps that are not carried out yet.
  [[nodiscard]] std::span<const ListStep> Rest() const noexcept {
    return std::span(steps).subspan(done);
  }
  void Submitted() noexcept { isSubmitted = true; }
  void StepIsDone() noexcept { ++done; }
  /// The engine ends, and this operation is no longer its own.
  void Abandon() noexcept { engine = nullptr; }

  void Run() override;
  [[nodiscard]] const void* Owner() const noexcept override;
  void Release() noexcept override;

  /// Reset: the rows that go.
  std::vector<RowId> removed;
  bool makesDoubles = false;

 private:
  void Clear() noexcept;

  ListEngine* engine;
  std::vector<ListStep> steps;
  std::vector<std::size_t> firstRows;  // for each step, where its rows begin in `rows`
  std::vector<RowId> rows;
  std::vector<RowId> added;
  std::vector<RowId> changed;
  std::vector<RowId> others;
  std::vector<const void*> contents;
  std::uint64_t fields = 0;
  std::size_t done = 0;
  bool isSubmitted = false;
};

}  // namespace DataBinding::details

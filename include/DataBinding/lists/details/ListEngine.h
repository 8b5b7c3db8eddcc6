// SPDX-License-Identifier: Apache-2.0
/// A ListEngine is what a list does without knowing its row type: it holds the rows, plans
/// operations, lets them wait, and carries them out.
///
/// 1. An operation is planned when it is called: the functions that it was given run, rows are
///    compared, and everything that may throw happens, also in views (ListNode::PrepareDependents).
///    Where something throws, the list is as before.
/// 2. While the family tells a change, a second state is kept: the order, the keys and the changed
///    rows as they will be when everything that waits is done. It is copied from the present one by
///    the first operation that waits, and dropped when the family is at rest. Operations are
///    planned against it, so each begins exactly where the one before has ended.
/// 3. Rows that go, and the former content of rows that change, live until the family is at rest.
///    Until then no id is given to another row.
/// 4. What the order and the key table need for everything that waits is reserved together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/lists/details/KeyTable.h"
#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/lists/details/RowOrder.h"
#include "DataBinding/lists/details/RowSlots.h"
#include "DataBinding/lists/details/RowTable.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::details {

class ListOperation;

/// An array of rows that are given to a list, which takes their content.
struct RowArray {
  [[nodiscard]] void* operator[](std::size_t i) const noexcept { return first + i * stride; }

  std::byte* first;
  std::size_t stride;
  std::size_t count;
};

class DATABINDING_API ListEngine {
 public:
  ListEngine(ListNode& itsNode, const RowTable& table);
  ListEngine(const ListEngine&) = delete;
  ListEngine& operator=(const ListEngine&) = delete;
  ~ListEngine();

  [[nodiscard]] const RowOrder& Order() const noexcept { return present.order; }
  [[nodiscard]] const RowSlots& Slots() const noexcept { return storage; }
  [[nodiscard]] const std::shared_ptr<ListTurns>& Turns() const noexcept { return turns; }
  /// The row at an index, or null beyond the end.
  [[nodiscard]] const void* RowAtPlace(std::size_t index) const noexcept {
    return index < present.order.Size() ? storage.Row(present.order.At(index)) : nullptr;
  }
  /// Returns the first row of a key, or KeyTable::none.
  [[nodiscard]] RowId Find(const void* key) const noexcept;
  [[nodiscard]] ListPlan Pending() const noexcept;

  /// These are the operations of ListData. They take indexes of the list as it reads now.
  ///@{
  SetResult Assign(const RowArray& rows);
  SetResult Insert(std::size_t at, const RowArray& rows);
  SetResult Remove(std::size_t at, std::size_t count);
  SetResult RemoveKey(const void* key);
  SetResult Move(std::size_t from, std::size_t count, std::size_t to);
  SetResult Update(std::span<const RowId> rows, const RowEdit& edit);
  SetResult UpdateKeys(std::span<const void* const> keys, const RowEdit& edit);
  SetResult UpdateAt(std::size_t index, const RowEdit& edit);
  ///@}
  /// Asks the validators of those fields of a row whose bits are set.
  [[nodiscard]] SetResult CheckRow(const void* row, std::uint64_t fields) const;
  /// Calls a function with each row, in order, as the list will be when all that waits is done.
  void VisitComing(const RowEdit& visit);

  /// These tell that rows have changed by themselves, as data sources do: the first one prepares
  /// for it, and may throw; the list may be gone after the second. They are called in a turn.
  ///@{
  void PrepareChange(const ListStep& step);
  void TellChange(const ListStep& step) noexcept;
  ///@}

  /// Frees what the outermost operation has kept. Returns true when it changed the list.
  bool Rest();
  /// Empties the list while its node ends.
  void End() noexcept;
  /// Ends all rows. The list has ended before.
  void EndRows() noexcept;

 private:
  friend class ListOperation;
  friend class ListPlanner;

  /// A State says where the rows stand, and what their keys are.
  struct State {
    RowOrder order;
    KeyTable keys;
  };
  /// Coming is the state when all that waits is done. `rows` says by id what changed rows will be.
  struct Coming {
    State state;
    std::vector<const void*> rows;
  };
  using OperationPtr = std::unique_ptr<ListOperation, ReleaseTurn>;

  [[nodiscard]] bool HasKey() const noexcept { return storage.Table().key != nullptr; }
  [[nodiscard]] RowReader Reader() const noexcept { return {&storage}; }
  /// The state against which an operation is planned, and how its rows are read.
  ///@{
  [[nodiscard]] State& Planning();
  [[nodiscard]] RowReader PlanningReader() const noexcept;
  ///@}
  void Foresee();
  [[nodiscard]] OperationPtr NewOperation();
  [[nodiscard]] SetResult Submit(OperationPtr operation);
  /// Needs count what is reserved for an operation, or for all that are still to be told.
  struct Needs {
    std::size_t insertions = 0;     // into the order
    std::size_t keyInsertions = 0;  // into the key table
    std::size_t removals = 0;
    std::size_t changes = 0;
  };
  [[nodiscard]] Needs NeedsOf(const ListStep& step) const noexcept;
  void Reserve(const ListOperation& operation, const Needs& all);
  void PrepareNode(std::span<const ListStep> steps, const Needs& all);
  void ReserveState(State& state, const Needs& needs, bool withDoubles, const RowReader& rows);
  /// Carries a step out. Returns false when the list has ended meanwhile.
  bool Tell(const ListStep& step) noexcept;
  void Apply(const ListStep& step) noexcept;
  void ApplyToComing(const ListStep& step) noexcept;
  void ApplyOrder(State& state, const ListStep& step, const RowReader& rows) const noexcept;
  /// Changes rows by `change(index)`, in a state whose keys are kept right.
  template <class Change>
  void ApplyChanges(State& state, const ListStep& step, const RowReader& rows,
                    Change change) noexcept;

  [[nodiscard]] std::vector<RowId> IdsFrom(std::size_t at, std::size_t count) const;
  [[nodiscard]] RowId FirstOf(const State& state, const void* key,
                              const RowReader& rows) const noexcept;
  [[nodiscard]] std::size_t PlaceBefore(const State& state, std::size_t at) const noexcept;
  [[nodiscard]] bool HasDouble(const State& state, const ListOperation& operation) const;
  SetResult PlanChanges(ListOperation& operation, const State& state, std::span<const RowId> rows,
                        const RowEdit& edit);
  SetResult PlanChange(ListOperation& operation, RowId row, const RowEdit& edit);
  [[nodiscard]] SetResult ReasonAgainstKeys(const State& state,
                                            const ListOperation& operation) const;
  void ReportDoubles() const;

  ListNode& node;
  std::shared_ptr<ListTurns> turns;
  RowSlots storage;
  RowSlots others;  // what changed rows will be, and then what they were
  State present;
  std::unique_ptr<Coming> coming;
  ListOperation* running = nullptr;
  OperationPtr spare;  // to be used again
  std::vector<RowId> gone;
  Needs pending;  // what is still to be told
  std::size_t mostChanged = 0;
  std::uint64_t keyBit = 0;
  bool isPlanning = false;  // the application's functions plan an Update
  bool hasChanged = false;
  bool hasDoubles = false;  // the first were found by an operation that is not over yet
  bool areDoublesReported = false;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// This header holds what lists, views and binds to lists are for each other: a ListNode is one of
/// them, a ListDependent follows a node, and a ListTurns is the queue that they share.
///
/// A list and all that follows it, directly or not, are a family. One change is told at a time in a
/// family. An operation that is called meanwhile waits in its ListTurns until the change was told
/// to all.
///
/// 1. An operation becomes a ListPlan of ListSteps. All dependents prepare for it, which may
///    allocate and throw. From there on nothing throws.
/// 2. For each step the node's observers hear the change before it happens, then dependents hear
///    Before; the node changes; dependents hear After, then the observers hear the change after it
///    has happened. So a view shrinks before its list and grows after it.
/// 3. Whatever observers throw goes to the listener failure handler, under the list's name.
/// 4. Any node, dependent, observer or subscription may end in any of these calls.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/details/RowOrder.h"
#include "DataBinding/lists/details/RowTable.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding {

/// Says how a list changes.
enum class ListChangeKind {
  Inserted,   ///< rows come in one place
  Removed,    ///< rows go that stood side by side
  Moved,      ///< rows that stand side by side go to another place together
  Changed,    ///< fields of rows have other values; the rows may stand anywhere
  Reordered,  ///< the same rows stand in another order
  Reset       ///< other rows stand in another order; rows that stay keep their ids
};

class AnyList;
class ListChange;

namespace details {

/// One step of a change, as dependents hear it. What the spans refer to lives until the step has
/// been told.
struct ListStep {
  ListChangeKind kind = ListChangeKind::Reset;
  /// The place of the first row: before the step for Removed and Moved, after it for Inserted.
  std::size_t at = 0;
  std::size_t count = 0;
  /// Moved: the place where the first row stands afterwards.
  std::size_t to = 0;
  /// The rows that are inserted, removed, moved or changed. Reordered and Reset: all rows in their
  /// new order.
  std::span<const RowId> rows = {};
  /// Changed: the fields that differ in any of the rows, as RowTable::BitOf names them.
  std::uint64_t fields = 0;
  /// Changed: for each row the other content of it; what it will be, in Before, and what it was, in
  /// After.
  std::span<const void* const> others = {};
  /// Reset: the rows that go and those that come.
  ///@{
  std::span<const RowId> gone = {};
  std::span<const RowId> come = {};
  ///@}
};

/// A ListPlan tells a dependent what it has to make room for. The numbers hold for everything that
/// the node still has to tell, also for what waits: a dependent that is prepared again keeps the
/// greater numbers only.
struct ListPlan {
  /// The steps of the operation that is new.
  std::span<const ListStep> steps;
  /// How often rows will be inserted or moved.
  std::size_t insertions = 0;
  /// All ids are below this one.
  RowId idsBelow = 0;
  /// The most rows that the node will have, and the most that one step changes.
  ///@{
  std::size_t mostRows = 0;
  std::size_t mostChanged = 0;
  ///@}
  /// How often the fields of a row will change.
  std::size_t changes = 0;
};

class ListNode;

/// A dependent of a node changes in step with it: a view, a bind, a selection.
class ListDependent {
 public:
  /// Does everything that may allocate or throw for what the plan says. Nothing has changed yet,
  /// and other operations may be told before this one.
  virtual void Prepare(const ListPlan& plan) = 0;
  /// The node reads as it was. A dependent shrinks here.
  virtual void Before(const ListStep& step) noexcept = 0;
  /// The node reads as it is now. A dependent grows here.
  virtual void After(const ListStep& step) noexcept = 0;
  /// The node ends. Its rows can be read until this returns, and nothing of it may be kept. The
  /// node has forgotten the dependent. This may come within Before and After.
  virtual void ListEnds() noexcept = 0;
  /// The outermost operation is over. What Prepare has reserved may be given back.
  virtual void AtRest() noexcept {}

 protected:
  ~ListDependent() = default;
};

/// A turn is an operation that waits for its time, or the one that is told.
class DATABINDING_API ListTurn {
 public:
  virtual ~ListTurn();
  /// Changes a node and tells all. An exception leaves the outermost operation.
  virtual void Run() = 0;
  /// The node or view whose turn it is; Drop finds turns by it.
  [[nodiscard]] virtual const void* Owner() const noexcept = 0;
  /// Is called when the turn is over or dropped, and deletes it. A turn that is used again
  /// overrides this.
  virtual void Release() noexcept { delete this; }
};

struct ReleaseTurn {
  ReleaseTurn() noexcept = default;
  /// Lets a std::unique_ptr to any turn become a ListTurnPtr.
  template <std::derived_from<ListTurn> Turn>
  ReleaseTurn(const std::default_delete<Turn>& /*deleter*/) noexcept {}
  void operator()(ListTurn* turn) const noexcept { turn->Release(); }
};
using ListTurnPtr = std::unique_ptr<ListTurn, ReleaseTurn>;

/// The queue of a family.
class DATABINDING_API ListTurns : public std::enable_shared_from_this<ListTurns> {
 public:
  explicit ListTurns(ListNode* itsRoot) noexcept : root(itsRoot) {}
  ListTurns(const ListTurns&) = delete;
  ListTurns& operator=(const ListTurns&) = delete;
  ~ListTurns();

  /// Returns true while the family tells a change.
  [[nodiscard]] bool IsTelling() const noexcept { return isTelling; }
  /// Makes room for one turn, so that the next Take allocates nothing.
  void Reserve();
  /// Runs the turn, and after it the turns that have come to wait. Returns false when the family
  /// tells a change: then the turn waits. The first exception of a turn leaves this call after all
  /// have run.
  bool Take(ListTurnPtr turn);
  /// Drops what an owner has waiting. An owner that ends calls this.
  void Drop(const void* owner) noexcept;
  /// Lets what is called wait while a node tells that it ends. Returns false when it waits anyway;
  /// otherwise FinishEnd follows, which runs what has waited and reports what that throws.
  ///@{
  [[nodiscard]] bool BeginEnd() noexcept { return !std::exchange(isTelling, true); }
  void FinishEnd() noexcept;
  ///@}
  /// The root of the family has ended.
  void ForgetRoot() noexcept { root = nullptr; }
  /// Returns true when the callbacks of the family did not come to rest within some operation.
  [[nodiscard]] bool WasRestless() const noexcept { return wasRestless; }

 private:
  void RunAll(ListTurnPtr first);
  ListTurnPtr TakeNext() noexcept;
  void ReportUnrest();

  ListNode* root;
  std::vector<ListTurnPtr> waiting;
  std::size_t next = 0;
  bool isTelling = false;
  bool wasRestless = false;
};

/// Refers to a function that changes a copy of a row, or says why it does not.
class RowEdit {
 public:
  enum class Aim {
    Change,  ///< to change the row
    Check,   ///< only to say what Change would answer
    PutBack  ///< to give the row former values, which validators are not asked about
  };

  template <class Function>
  requires(!std::same_as<std::remove_cvref_t<Function>, RowEdit>)
      RowEdit(Function&& edit, Aim itsAim = Aim::Change)
  noexcept
      : context(&edit), aim(itsAim), run([](const void* function, void* row) -> SetResult {
          // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): it is called as it was given
          auto* const given = const_cast<void*>(function);
          return (*static_cast<std::remove_reference_t<Function>*>(given))(row);
        }) {}
  SetResult operator()(void* row) const { return run(context, row); }
  [[nodiscard]] Aim Purpose() const noexcept { return aim; }

 private:
  const void* context;
  Aim aim;
  SetResult (*run)(const void* function, void* row);
};

/// A row, and what is known of its type.
struct TypedRow {
  const void* row;
  const RowTable* table;
};

/// A list, a view or a bind, without its row type.
class DATABINDING_API ListNode {
 public:
  ListNode(const ListNode&) = delete;
  ListNode& operator=(const ListNode&) = delete;

  [[nodiscard]] virtual std::size_t Size() const noexcept = 0;
  /// The id of the row at an index below Size(), and the index of an id, or RowOrder::nowhere.
  ///@{
  [[nodiscard]] virtual RowId At(std::size_t index) const noexcept = 0;
  [[nodiscard]] virtual std::size_t IndexOfRow(RowId id) const noexcept = 0;
  ///@}
  /// The row of an id. It can be read as long as the row is in the list, and after that until the
  /// outermost operation is over.
  [[nodiscard]] virtual const void* RowOf(RowId id) const noexcept = 0;
  /// The rows of many ids; `to` has room for as many.
  virtual void CopyRows(std::span<const RowId> ids, const void** to) const noexcept {
    for (const RowId id : ids) *to++ = RowOf(id);
  }
  /// The row at an index, if there is one, and what Table() returns, in one call.
  [[nodiscard]] virtual TypedRow RowAtPlace(std::size_t index) const noexcept {
    return {index < Size() ? RowOf(At(index)) : nullptr, Table()};
  }
  /// Returns what is known of the row type, or null while nothing is known.
  [[nodiscard]] virtual const RowTable* Table() const noexcept = 0;
  /// The first row of a key, or `noRow`. It takes O(n) unless a class knows better.
  [[nodiscard]] virtual RowId FindKey(const void* key) const noexcept;
  static constexpr RowId noRow = ~RowId{0};
  /// Calls a function with a copy of a row, and then changes the row as the list's Update does.
  virtual SetResult UpdateRow(RowId id, const RowEdit& edit) = 0;
  /// Returns true for a list that only its own source changes, and for its views and binds.
  [[nodiscard]] virtual bool IsReadOnly() const { return false; }
  /// Moves rows that stand side by side; the first one stands at `to` afterwards. A list whose
  /// owner lets others change it does so, a bind to it, and an AnySortedList that shows its order.
  /// All others refuse it, and CanMoveRows says so before. While a change is told a list lets the
  /// move wait, and the others refuse it, whatever CanMoveRows says.
  ///@{
  virtual SetResult MoveRows(std::size_t from, std::size_t count, std::size_t to);
  [[nodiscard]] virtual bool CanMoveRows() const { return false; }
  ///@}
  /// The queue of the family, which may be another one after a bind has changed its source.
  [[nodiscard]] virtual const std::shared_ptr<ListTurns>& Turns() const noexcept = 0;
  /// The name under which failures are reported, which is empty for a list that is no member of a
  /// source. This must not allocate.
  [[nodiscard]] virtual VtrString ListName() const = 0;
  /// All ids are below this one.
  [[nodiscard]] virtual RowId IdsBelow() const noexcept = 0;
  /// Returns true while rows go because the list of a bind goes. They may come again with it, so a
  /// selection waits for them.
  [[nodiscard]] virtual bool IsSourceGoing() const noexcept { return false; }
  /// The outermost operation of the family whose root this is has ended.
  virtual void AtRest() {}
  /// Copies the ids of the rows from an index on, in order. There are at least as many as `to` has
  /// room for.
  virtual void CopyIds(std::size_t at, std::span<RowId> to) const noexcept;
  /// Tells, while a step is told, whether the fields of rows can be read as they are after it.
  [[nodiscard]] virtual bool HasNewRows() const noexcept { return phase == Phase::After; }
  /// Has a view ask its rows before somebody observes or follows it. Returns false where it shows
  /// none after that, because it is just asking them.
  virtual bool Awaken() { return true; }

  /// Makes a dependent hear of changes. One that is added while a change is told is prepared at
  /// once for all that is to come; it hears of the present step if that is not done yet.
  void AddDependent(ListDependent& dependent);
  void RemoveDependent(ListDependent& dependent) noexcept;
  /// Tells the dependents that the outermost operation is over.
  void RestDependents() noexcept;
  /// Calls a function for each change, before and after it. Null gives an inert subscription.
  Subscription ObserveChanges(const RepeatingCallback<void(const ListChange&)>& observer);

  /// Returns true while a change of this node is told, also between the two calls.
  [[nodiscard]] bool IsTelling() const noexcept { return phase != Phase::Rest; }
  /// Tells whether the node lives. It ends before its rows do.
  [[nodiscard]] WeakReference Liveness() const { return weak.GetRef(); }

 protected:
  ListNode();
  virtual ~ListNode();

  /// Moves rows of a source that this node shows as they stand there.
  SetResult MoveRowsOf(ListNode* source, std::size_t from, std::size_t count, std::size_t to) const;
  /// Returns what is still to be told, for a dependent that is added meanwhile.
  [[nodiscard]] virtual ListPlan Pending() const noexcept { return {}; }
  /// Returns true when a change of this node would be heard.
  [[nodiscard]] bool HasDependents() const noexcept { return !dependents.empty(); }
  void PrepareDependents(const ListPlan& plan);
  /// These tell a step: TellBefore while this node still is as it was, TellAfter when it has
  /// changed. They return false when the node has ended meanwhile, or when a bind has let go of its
  /// rows, which takes the place of what was being told.
  ///@{
  bool TellBefore(const ListStep& step) noexcept;
  bool TellAfter(const ListStep& step) noexcept;
  ///@}
  /// Tells that the node ends: observers hear a Reset, dependents that it ends. The destructor of a
  /// class calls it as the first thing; `empty` leaves the node without rows. Only the first call
  /// does anything.
  void TellEnd(void (*empty)(ListNode& self)) noexcept;

 private:
  friend class ListEngine;
  friend class BoundRows;
  friend class ListView;
  enum class Phase { Rest, Before, BeforeInDependents, Between, After };
  class Observer;

  void TellEndNow(void (*empty)(ListNode& self)) noexcept;
  void LeaveDependents() noexcept;
  void CallLate(const RepeatingCallback<void(const ListChange&)>& observer);
  void CallObservers(const ListStep& step, bool isBefore) noexcept;

  CallbackList<ListChange> observers;
  std::vector<ListDependent*> dependents;  // null in the place of one that has left
  std::size_t heardBefore = 0;             // the dependents that have heard Before of this step
  std::uint64_t serial = 0;
  const ListStep* told = nullptr;  // the present step
  Phase phase = Phase::Rest;
  bool hasEnded = false;
  WeakReferenceOwner weak;       // until the node tells its end
  WeakReferenceOwner existence;  // until it is destroyed
};

}  // namespace details

}  // namespace DataBinding

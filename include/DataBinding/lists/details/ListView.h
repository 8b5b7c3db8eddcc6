// SPDX-License-Identifier: Apache-2.0
/// A ListView is what sorted and filtered views do without knowing their row type: it follows a
/// list, a bind or another view, holds the order of the rows that it shows, and tells its changes.
///
/// A view holds ids of rows and no copies. It sleeps until it is read or observed for the first
/// time; then it asks its rows, and it never sleeps again. While it sleeps it follows nothing, and
/// is only told that its list ends.
///
/// 1. Prepare reserves what the present operation and all that wait may need, in this view and in
///    those that follow it. Before and After allocate nothing.
/// 2. In Before the view removes rows that go; in After it inserts rows that come, and moves,
///    inserts and removes those whose fields have changed. In between it reads as it told last.
/// 3. A change of fields is passed on in both calls, with the rows where they stand. What follows
///    from it is told after that.
/// 4. A reset of the list, or another order of it, is one step of the view, too.
/// 5. The rows from Size() - aside on are set aside: a comparison of them threw. No search goes
///    there.
///
/// Any function of the application that is called here may throw; it may change lists, which then
/// waits; and observers may end the view, its list and others. After a step was told, nothing of
/// the view is touched unless Tell says that the view follows its list as before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/lists/details/RowOrder.h"

namespace DataBinding::details {

/// A row that is sorted, and its number, if it is sorted by numbers.
struct ComparedRow {
  RowId id = 0;
  const void* row = nullptr;
  std::uint64_t number = 0;
};

/// A row, and a place in a view that it has or is to have.
struct PlacedRow {
  std::size_t at;
  RowId id;
};

/// The arrays with which a view works. There is room in each for all rows that the steps concern,
/// and nothing in between.
struct ViewRoom {
  void Reserve(std::size_t most);
  /// Copies what is in the arrays of another; there is room for it.
  void TakeContents(const ViewRoom& other);

  std::vector<RowId> target;  // the rows as they are to stand
  std::vector<RowId> come;
  std::vector<RowId> gone;
  std::vector<RowId> rows;
  std::vector<PlacedRow> placed;
  std::vector<PlacedRow> coming;
  std::vector<const void*> others;
  std::vector<ComparedRow> compared;
  std::vector<ComparedRow> spare;
};

class DATABINDING_API ListView : public ListDependent, protected ViewRoom {
 public:
  ListView(const ListView&) = delete;
  ListView& operator=(const ListView&) = delete;

  /// These answer for the view's node.
  ///@{
  [[nodiscard]] std::size_t Size() const noexcept { return Rows().Size(); }
  [[nodiscard]] RowId At(std::size_t index) const noexcept { return Rows().At(index); }
  [[nodiscard]] std::size_t IndexOf(RowId id) const noexcept { return Rows().IndexOf(id); }
  [[nodiscard]] const void* RowOf(RowId id) const noexcept;
  void CopyRows(std::span<const RowId> ids, const void** to) const noexcept;
  SetResult UpdateRow(RowId id, const RowEdit& edit);
  [[nodiscard]] bool IsReadOnly() const { return source != nullptr && source->IsReadOnly(); }
  [[nodiscard]] const std::shared_ptr<ListTurns>& Turns() const noexcept;
  [[nodiscard]] bool IsSourceGoing() const noexcept {
    return source != nullptr && source->IsSourceGoing();
  }
  [[nodiscard]] bool HasNewRows() const noexcept {
    return source != nullptr && source->HasNewRows();
  }
  [[nodiscard]] VtrString ListName() const;
  [[nodiscard]] const RowTable* Table() const noexcept {
    return source == nullptr ? nullptr : source->Table();
  }
  [[nodiscard]] bool CanMoveRows() const { return source != nullptr && source->CanMoveRows(); }
  SetResult MoveRows(std::size_t from, std::size_t count, std::size_t to) {
    return node.MoveRowsOf(source, from, count, to);
  }
  [[nodiscard]] RowId IdsBelow() const noexcept;
  [[nodiscard]] ListPlan Pending() const noexcept;
  void CopyIds(std::size_t at, std::span<RowId> to) const noexcept { order.CopyIds(at, to); }
  ///@}
  /// Asks the rows if the view still sleeps. Returns false if it sleeps on, because it is just
  /// asking them or has ended. Strong guarantee.
  bool Awaken();
  /// Tells that the view ends. The class of its node calls it as the first thing of its destructor.
  void End() noexcept;
  /// Leaves the view without rows while its node ends.
  void Empty() noexcept;

 protected:
  ListView(ListNode& itsNode, ListNode& itsSource, void (*emptyNode)(ListNode& self));
  ~ListView();
  void Prepare(const ListPlan& plan) override;
  void Before(const ListStep& step) noexcept override;
  void After(const ListStep& step) noexcept override;
  void ListEnds() noexcept override;
  void AtRest() noexcept override;

  /// Turns the list's rows, which stand in `target` in the list's order, into those of the view.
  /// `asideInTarget` says how many of them are set aside.
  virtual void Evaluate() noexcept = 0;
  /// A view does these in Before: it removes rows, passes on that fields change, and begins to show
  /// the rows of a new order.
  ///@{
  virtual void Remove(const ListStep& step) noexcept = 0;
  virtual void PassOn(const ListStep& step) noexcept = 0;
  virtual void TakeTarget(const ListStep& step) noexcept = 0;
  ///@}
  /// A view does these in After: it inserts rows, moves them as the list has moved them, and asks
  /// those whose fields have changed.
  ///@{
  virtual void Insert(const ListStep& step) noexcept = 0;
  virtual void Move(const ListStep& step) noexcept = 0;
  virtual void AskChanged(const ListStep& step) noexcept = 0;
  ///@}
  /// Runs an operation of the view when the family has told what it tells now.
  void TakeTurn(RepeatingCallback<void()> run);
  /// Reserves room for whatever the view may do, in a turn of its own.
  void ReserveAll();
  /// Prepares the view and its dependents for an operation of its own, which lets so many rows come
  /// or shows so many in another order.
  void PrepareOwn(std::size_t insertions);

  [[nodiscard]] bool IsAwake() const noexcept { return isAwake; }
  /// Returns true while the settings may be changed at once, since nobody asks them.
  [[nodiscard]] bool IsAsleep() const noexcept { return !isAwake && !isAwaking; }
  /// The most ranges that one operation tells.
  [[nodiscard]] std::size_t MostRanges() const noexcept;
  /// Marks rows; IsMarked asks for them. Reserved for all rows.
  ///@{
  void Mark(std::span<const RowId> ids) noexcept;
  void Unmark(RowId id) noexcept { marks[id / markBits] &= ~(std::uint64_t{1} << id % markBits); }
  [[nodiscard]] bool IsMarked(RowId id) const noexcept {
    return (marks[id / markBits] >> id % markBits & 1) != 0;
  }
  ///@}

  /// These tell and make steps. They answer false when the view does not follow its list any more.
  ///@{
  bool TellBefore(const ListStep& step) noexcept { return node.TellBefore(step); }
  bool TellAfter(const ListStep& step) noexcept { return node.TellAfter(step); }
  bool Tell(const ListStep& step) noexcept;
  /// Removes the rows of `placed`, which have their places in ascending order. A row that is set
  /// aside stays behind the others, so the caller counts these anew first.
  bool TellRemovals() noexcept;
  /// Inserts the rows of `placed`. Their places are those of the present rows before which they are
  /// to stand, in ascending order.
  bool TellInsertions() noexcept;
  /// Removes or inserts the rows of `placed` in ranges, however many these are.
  bool TellRanges(ListChangeKind kind) noexcept;
  /// Makes `target` the rows of the view, by one Reset, or Reordered where the rows are the same.
  bool TellTarget() noexcept;
  /// The first half of TellTarget, and the second.
  ///@{
  bool BeginTarget() noexcept;
  bool EndTarget() noexcept;
  ///@}
  ///@}
  /// Copies the rows of the view without those of `placed`, which have their places in ascending
  /// order. There is room for them.
  void CopyRest(std::vector<RowId>& to) const noexcept;
  /// Merges the rows of `placed` into `base`, where their places are, and gives `target`.
  void MergeInto(std::span<const RowId> base) noexcept;
  /// The number of ranges that the places make: of rows that stand there, or of rows that come
  /// before the places.
  ///@{
  [[nodiscard]] static std::size_t CountRanges(std::span<const PlacedRow> some) noexcept;
  [[nodiscard]] static std::size_t CountGaps(std::span<const PlacedRow> some) noexcept;
  ///@}
  /// Puts all rows of the list into `target`.
  void TakeRowsOfSource() noexcept;

  /// A step of so few rows does not go over all rows.
  static constexpr std::size_t few = 16;

  ListNode& node;
  ListNode* source;
  RowOrder order;
  std::size_t aside = 0;
  std::size_t asideInTarget = 0;

 private:
  static constexpr std::size_t markBits = 64;

  class Turn;
  /// The order, after the rows were asked.
  [[nodiscard]] const RowOrder& Rows() const noexcept {
    if (!isAwake) TryToAwaken();
    return order;
  }
  void TryToAwaken() const noexcept;
  void ForgetList() noexcept;
  void AwakenNow();
  void ReserveRoom(std::size_t most, RowId idsBelow);
  [[nodiscard]] ListPlan OwnPlan(const ListPlan& plan) const noexcept;
  void TakeNothing(const ListStep& step) noexcept;
  [[nodiscard]] bool IsTarget() const noexcept;
  void CompareWithTarget() noexcept;

  void (*empty)(ListNode& self);
  std::shared_ptr<ListTurns> lastTurns;  // once the source is gone
  std::vector<std::uint64_t> marks;
  std::vector<ViewRoom> outgrown;  // steps that are told may still refer to these
  ListStep whole;                  // what BeginTarget tells
  /// These count what is still to be told: insertions and changes that the list has planned, and
  /// insertions of the view's own operation.
  ///@{
  std::size_t plannedInsertions = 0;
  std::size_t plannedChanges = 0;
  std::size_t ownInsertions = 0;
  ///@}
  bool isTargetOpen = false;
  bool isAwake = false;
  bool isAwaking = false;
  bool isLosingList = false;
  bool hasEnded = false;
};

}  // namespace DataBinding::details

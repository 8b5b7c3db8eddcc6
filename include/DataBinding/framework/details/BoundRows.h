// SPDX-License-Identifier: Apache-2.0
/// BoundRows are the rows of a bind to a list, which follows one list after another. They tell the
/// bind's observers and dependents what changes in the list, and how another list differs.
///
/// A row has an id of the bind's own, which it keeps when another list has a row of its key. While
/// one list takes the place of another, both live and rows are read from both:
///
/// 1. Rows of one key become rows of the new list, in one Changed. Then the other rows of the
/// former
///    list are removed, those that stay are reordered if need be, and those that only the new list
///    has are inserted. Where that were too many steps, one Reset tells it.
/// 2. Both families count as telling meanwhile, so whatever a callback has them do waits.
/// 3. If a list ends while a change is told, the bind lets go of all rows at once, as long as they
///    can be read, and tells that by a Reset; what was being told is not told to the rest any more.
///    Another list waits until the family that was left has told everything, since those that have
///    called may still refer to what the bind and its dependents were telling.
///
/// Ids of rows that have gone are given to others when the family has come to rest. What a change
/// of the list needs is reserved when the list is prepared for it, with room for letting go of all.
/// The dependents are prepared for that when it happens; if there is no memory, they are told a
/// Reset to no rows, for which they need none.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/AnyList.h"
#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/lists/details/RowOrder.h"

namespace DataBinding::details {

class DATABINDING_API BoundRows final : public SupportsWeakPtr<BoundRows> {
 public:
  explicit BoundRows(ListNode& itsNode);
  BoundRows(const BoundRows&) = delete;
  BoundRows& operator=(const BoundRows&) = delete;
  /// Leaves the list. The node has told its end before.
  ~BoundRows();

  /// Shows another list, or none. While a family is telling a change, another list waits for the
  /// end of that; null takes effect at once, since the list may be ending.
  void Show(AnyList* newList);
  /// Forgets all rows while the node ends.
  void Clear() noexcept;

  /// These answer for the node.
  ///@{
  [[nodiscard]] AnyList* List() const noexcept { return Shown().list; }
  [[nodiscard]] const RowOrder& Order() const noexcept { return order; }
  [[nodiscard]] const void* RowOf(RowId id) const noexcept;
  [[nodiscard]] SetResult UpdateRow(RowId id, const RowEdit& edit);
  [[nodiscard]] const std::shared_ptr<ListTurns>& Turns() const noexcept;
  [[nodiscard]] RowId IdsBelow() const noexcept { return static_cast<RowId>(places.size()); }
  [[nodiscard]] bool IsSourceGoing() const noexcept { return isSourceGoing; }
  [[nodiscard]] ListPlan Pending() const noexcept;
  ///@}

 private:
  class Exchange;
  class ShowTurn;
  class EmptyTurn;
  static constexpr RowId none = static_cast<RowId>(-1);

  /// Hears the changes of one list.
  struct DATABINDING_API Follower final : ListDependent {
    explicit Follower(BoundRows& itsRows) noexcept : rows(itsRows) {}
    void Prepare(const ListPlan& plan) override { rows.Prepare(plan, *this); }
    void Before(const ListStep& step) noexcept override { rows.Before(step); }
    void After(const ListStep& step) noexcept override { rows.After(step); }
    void ListEnds() noexcept override { rows.ListEnds(); }
    void AtRest() noexcept override { rows.AtRest(); }
    void Leave() noexcept;

    BoundRows& rows;
    AnyList* list = nullptr;
    /// The bind's ids, by the ids of the list.
    std::vector<RowId> ids;
  };
  /// Says where the content of a row is.
  struct Place {
    RowId id;
    bool isOfSecond;
  };
  [[nodiscard]] const Follower& Shown() const noexcept { return followers[isSecond ? 1 : 0]; }
  [[nodiscard]] Follower& Shown() noexcept { return followers[isSecond ? 1 : 0]; }
  [[nodiscard]] Follower& Other() noexcept { return followers[isSecond ? 0 : 1]; }
  void Prepare(const ListPlan& plan, Follower& follower);
  void Before(const ListStep& step) noexcept;
  void After(const ListStep& step) noexcept;
  void AtRest() noexcept;
  void ListEnds() noexcept;
  void LetGo() noexcept;
  void Empty(ListChangeKind kind) noexcept;
  void RemoveAll(ListChangeKind kind) noexcept;
  void TakeTurn(const ListTurns* running);
  void ShowWanted();
  void Reserve(const ListPlan& plan, bool hasAllRows, Follower& follower);
  void ReserveSteps(std::size_t most);
  void Grow(std::vector<RowId>& ids, std::size_t most);
  [[nodiscard]] RowId NewId(RowId theirs, bool isOfSecond) noexcept;
  [[nodiscard]] ListStep Translated(const ListStep& step) noexcept;
  static std::span<const RowId> Translate(const Follower& follower, std::span<const RowId> theirs,
                                          std::vector<RowId>& own) noexcept;
  bool Tell(const ListStep& step) noexcept;
  void Apply(const ListStep& step) noexcept;
  void Release(std::span<const RowId> ids) noexcept;
  void ReuseReleased() noexcept;

  ListNode& node;
  std::shared_ptr<ListTurns> ownTurns;
  std::shared_ptr<ListTurns> leftTurns;  // of the family that was left while it told a change
  std::array<Follower, 2> followers{Follower(*this), Follower(*this)};
  bool isSecond = false;      // which of them follows the list that is shown
  AnyList* wanted = nullptr;  // the list that is to be shown, while it lives
  WeakReference wantedLives;
  bool isTurnWaiting = false;
  bool isSourceGoing = false;
  std::unique_ptr<ListTurn> emptying;  // made beforehand, since letting go must not fail

  RowOrder order;
  std::vector<Place> places;    // by the bind's ids
  std::vector<RowId> free;      // ids that no row has
  std::vector<RowId> released;  // ids of rows that have gone and can still be read
  ListStep present;             // the list's step that is being told
  std::vector<RowId> stepRows;  // its rows
  std::vector<RowId> stepGone;
  std::vector<RowId> stepCome;
  std::vector<RowId> leaving;                // the rows of which the bind lets go
  std::vector<std::vector<RowId>> outgrown;  // steps that are told may still refer to these
  ListPlan pending;
  /// Counts the rows that an Exchange that is under way may still insert. What is prepared
  /// meanwhile comes on top.
  std::size_t underWay = 0;
};

}  // namespace DataBinding::details

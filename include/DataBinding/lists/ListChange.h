// SPDX-License-Identifier: Apache-2.0
/// A ListChange is what the observers of a list hear, twice: before it happens, when the list still
/// reads as it was, and after it has happened. RowChange<Row> is the same with the row's type.
///
/// Rows that stood or come side by side are told together. All rows whose fields change in one
/// operation are told as one Changed, wherever they stand. A change is good until the observer
/// returns.
///
///   const Subscription seen = processes.Observe({.after = [](const RowChange<Process>& change) {
///     if (change.Kind() != ListChangeKind::Changed || !change.Has(&Process::cpu)) return;
///     for (std::size_t i = 0; i < change.Count(); ++i) Show(change.Was(i).cpu, change[i].cpu);
///   }});
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/details/ListCore.h"

namespace DataBinding {

namespace details {

/// Goes over anything that has operator[] by its indexes.
template <class Indexed>
class IndexIterator {
 public:
  using value_type = std::remove_cvref_t<decltype(std::declval<const Indexed&>()[0])>;
  using difference_type = std::ptrdiff_t;
  using reference = decltype(std::declval<const Indexed&>()[0]);
  using pointer = void;
  using iterator_category = std::forward_iterator_tag;

  IndexIterator() = default;
  IndexIterator(const Indexed& range, std::size_t at) noexcept : indexed(&range), index(at) {}

  reference operator*() const { return (*indexed)[index]; }
  IndexIterator& operator++() noexcept {
    ++index;
    return *this;
  }
  IndexIterator operator++(int) noexcept {
    IndexIterator former(*this);
    ++index;
    return former;
  }
  friend bool operator==(const IndexIterator&, const IndexIterator&) = default;

 private:
  const Indexed* indexed = nullptr;
  std::size_t index = 0;
};

}  // namespace details

/// A ListChange is one change, without the row type.
class DATABINDING_API ListChange {
 public:
  /// The list makes it of a step that it tells.
  ListChange(const details::ListNode& itsNode, const details::ListStep& itsStep, bool isStillToCome,
             std::uint64_t itsSerial) noexcept
      : node(&itsNode), step(&itsStep), serial(itsSerial), isBefore(isStillToCome) {}

  /// Says what happens.
  [[nodiscard]] ListChangeKind Kind() const noexcept { return step->kind; }
  /// Returns true in the first of the two calls.
  [[nodiscard]] bool IsBefore() const noexcept { return isBefore; }
  /// The place of the first row: before the change for Removed and Moved, after it for Inserted.
  [[nodiscard]] std::size_t At() const noexcept { return step->at; }
  /// The number of rows that are inserted, removed, moved or changed, or stand in a new order.
  [[nodiscard]] std::size_t Count() const noexcept { return step->rows.size(); }
  /// Moved: the place where the first row stands afterwards.
  [[nodiscard]] std::size_t To() const noexcept { return step->to; }
  /// The rows, by their ids. Reordered and Reset: all rows in their new order.
  [[nodiscard]] std::span<const RowId> Ids() const noexcept { return step->rows; }
  /// The place of the i-th row, in the list as it reads in this call. A Changed row of a view may
  /// stand anywhere; the others stand one behind the other.
  [[nodiscard]] std::size_t PlaceOf(std::size_t i) const noexcept;
  /// Changed: tells whether the field of that number differs in any of the rows.
  [[nodiscard]] bool HasField(std::size_t number) const noexcept {
    return (step->fields & details::RowTable::BitOf(number)) != 0;
  }
  /// The step as dependents of the list hear it.
  [[nodiscard]] const details::ListStep& Step() const noexcept { return *step; }
  /// The list, view or bind that tells the change.
  [[nodiscard]] const details::ListNode& Node() const noexcept { return *node; }
  /// Counts the changes of the list.
  [[nodiscard]] std::uint64_t Serial() const noexcept { return serial; }

 private:
  const details::ListNode* node;
  const details::ListStep* step;
  std::uint64_t serial;
  bool isBefore;
};

/// A RowChange is one change of a list whose row type is known.
template <class Row>
class RowChange : public ListChange {
 public:
  /// Takes a change of a list of such rows.
  explicit RowChange(const ListChange& untyped) noexcept : ListChange(untyped) {}

  /// The i-th row that is inserted, removed, moved or changed, as it reads in this call.
  [[nodiscard]] details::ShownRow<Row>& operator[](std::size_t i) const noexcept {
    return details::AsShown<Row>(Node().RowOf(Ids()[i]));
  }
  /// Changed: the i-th row as it was. To be used in the call after the change; in the one before
  /// it, the row itself reads so. A row that is a data source has changed already in both calls,
  /// and there is no former one: Was and Will are the row itself.
  [[nodiscard]] const Row& Was(std::size_t i) const noexcept {
    return IsBefore() ? (*this)[i] : Other(i);
  }
  /// Changed: the i-th row as it will be.
  [[nodiscard]] const Row& Will(std::size_t i) const noexcept {
    return IsBefore() ? Other(i) : (*this)[i];
  }
  /// Changed: tells whether that member differs in any of the rows. It must be a field.
  template <class T>
  [[nodiscard]] bool Has(T Row::*member) const noexcept {
    const auto number = details::NumberOf(member);
    assert(number && "the member is no field");
    return number && HasField(*number);
  }

  /// The rows one after the other, and their places.
  ///@{
  [[nodiscard]] auto Rows() const noexcept {
    return Range([change = *this](std::size_t i) -> auto& { return change[i]; });
  }
  [[nodiscard]] auto Places() const noexcept {
    return Range([change = *this](std::size_t i) { return change.PlaceOf(i); });
  }
  ///@}

 private:
  template <class At>
  struct IndexedRange {
    [[nodiscard]] decltype(auto) operator[](std::size_t i) const { return at(i); }
    // NOLINTNEXTLINE(readability-identifier-naming): ranges have this name
    [[nodiscard]] std::size_t size() const noexcept { return count; }
    [[nodiscard]] auto begin() const { return details::IndexIterator<IndexedRange>(*this, 0); }
    [[nodiscard]] auto end() const { return details::IndexIterator<IndexedRange>(*this, count); }

    At at;
    std::size_t count;
  };
  template <class At>
  [[nodiscard]] auto Range(At at) const noexcept {
    return IndexedRange<At>{at, Count()};
  }
  [[nodiscard]] const Row& Other(std::size_t i) const noexcept {
    return *static_cast<const Row*>(Step().others[i]);
  }
};

/// A ListObserver holds the functions that a list calls, both or one of them.
template <class Change>
struct ListObserver {
  /// Is called when the list still reads as it was.
  RepeatingCallback<void(const Change&)> before = {};
  /// Is called when the list reads as it is now.
  RepeatingCallback<void(const Change&)> after = {};
};

}  // namespace DataBinding

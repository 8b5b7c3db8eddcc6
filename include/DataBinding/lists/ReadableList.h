// SPDX-License-Identifier: Apache-2.0
/// A ReadableList is a list, a view or a bind to a list, as far as one may read and observe it.
///
///   for (const Process& process : list) Show(process);
///   const Subscription seen = list.Observe({.after = [](const RowChange<Process>& change) {...}});
///
/// Rows that are data sources are lent: their properties can be set, and they belong to the list.
/// References to rows are good until the row changes or goes. Iteration and indexes are good as
/// long as the list does not change; within an observer's call it does not.
#pragma once

#include <cstddef>
#include <utility>

#include "DataBinding/lists/AnyList.h"
#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/ListChange.h"

namespace DataBinding {

template <class Row>
class ReadableList : public AnyList {
 public:
  /// The row at an index, which must be below Size().
  [[nodiscard]] details::ShownRow<Row>& operator[](std::size_t index) const noexcept {
    return RowAt(At(index));
  }
  /// These go over the rows in their order. An iterator is good until the list changes.
  ///@{
  [[nodiscard]] auto begin() const noexcept {
    return details::IndexIterator<ReadableList>(*this, 0);
  }
  [[nodiscard]] auto end() const noexcept {
    return details::IndexIterator<ReadableList>(*this, Size());
  }
  ///@}
  /// The row of an id, which must be one of this list.
  [[nodiscard]] details::ShownRow<Row>& RowAt(RowId id) const noexcept {
    return details::AsShown<Row>(RowOf(id));
  }

  /// Calls the observer's functions before and after each change, as AnyList does.
  Subscription Observe(ListObserver<RowChange<Row>> observer) {
    return ObserveChanges([observer = std::move(observer)](const ListChange& change) {
      (change.IsBefore() ? observer.before : observer.after)(RowChange<Row>(change));
    });
  }

  /// Returns what the library knows of the row type.
  [[nodiscard]] const details::RowTable* Table() const noexcept override {
    return &details::TableOf<Row>();
  }

 protected:
  ReadableList() = default;
  ~ReadableList() override = default;
};

}  // namespace DataBinding

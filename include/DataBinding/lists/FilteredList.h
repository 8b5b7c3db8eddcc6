// SPDX-License-Identifier: Apache-2.0
/// A FilteredList shows those rows of a list, of a view or of a bind to a list for which a function
/// answers true, in their order, and follows each change.
///
/// The function is asked when a row comes or changes. It goes by the row, and by the properties
/// that stand behind it: when one of them is announced, all rows are asked again. Refilter asks
/// again where the function goes by anything else.
///
/// A view holds numbers of rows and no copies, 8 to 12 bytes a row. A row for which the function
/// throws is left out until it changes or all are asked, and the failure handler is told. The rows
/// are asked when the view is read or observed for the first time; a view that cannot get the
/// memory for that tells the failure handler and reads as empty.
///
/// A view belongs to the thread of its list. Either may end first, in any call, and a property may
/// end before the view: a view whose list has ended is empty.
///
///   Property<double> threshold{this, L"Threshold", 0.5};
///   FilteredList hot(busiest, [this](const Process& p) { return p.cpu > *threshold; }, threshold);
#pragma once

#include <array>
#include <concepts>
#include <utility>

#include "DataBinding/lists/ReadableList.h"
#include "DataBinding/lists/details/FilteredView.h"
#include "DataBinding/lists/details/ViewOf.h"

namespace DataBinding {

template <class Row>
class FilteredList final : public details::ViewOf<ReadableList<Row>, details::FilteredView> {
 public:
  /// Shows the rows for which the function answers true, and asks it again when one of the other
  /// properties changes.
  template <std::predicate<const Row&> Predicate,
            std::derived_from<details::PropertyBase>... Others>
  FilteredList(ReadableList<Row>& list, Predicate predicate, Others&... others)
      : details::ViewOf<ReadableList<Row>, details::FilteredView>(
            list, Test(std::move(predicate)), Array<sizeof...(Others)>{&others...}) {}
  ~FilteredList() override { this->view.End(); }

  /// Filters by another function and follows other properties. Called while the list or a view of
  /// it tells a change, it waits until that was told to all.
  template <std::predicate<const Row&> Predicate,
            std::derived_from<details::PropertyBase>... Others>
  void SetFilter(Predicate predicate, Others&... others) {
    this->view.SetFilter(Test(std::move(predicate)), Array<sizeof...(Others)>{&others...});
  }
  /// Asks for all rows again. Waits as SetFilter does.
  void Refilter() { this->view.Refilter(); }

 private:
  template <std::size_t Count>
  using Array = std::array<details::PropertyBase*, Count>;

  template <class Predicate>
  [[nodiscard]] static details::RowPredicate Test(Predicate predicate) {
    return [predicate = std::move(predicate)](details::RowQuestions& asked) {
      for (std::size_t i = asked.answered; i < asked.rows.size(); asked.answered = ++i) {
        asked.answers[i] = predicate(*static_cast<const Row*>(asked.rows[i]));
      }
    };
  }
};

/// The row type is that of the list, whatever the function takes.
template <class Row, class Predicate, class... Others>
FilteredList(ReadableList<Row>&, Predicate, Others&...) -> FilteredList<Row>;

}  // namespace DataBinding

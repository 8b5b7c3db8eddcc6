// SPDX-License-Identifier: Apache-2.0
/// A FilteredView is a FilteredList without its row type: it shows the rows of a list for which a
/// function answers true, in the order of the list.
///
/// The function is asked when a row comes or changes, and for all rows when a property changes that
/// the view was given with the function. A row for which it throws is left out until the row
/// changes or all are asked.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/lists/details/ListView.h"
#include "DataBinding/property/details/PropertyBase.h"

namespace DataBinding::details {

/// Rows of which a view asks whether they are shown. One call asks for many of them, since a call
/// through a callback costs more than most questions.
struct RowQuestions {
  std::span<const void* const> rows;
  bool* answers;
  std::size_t answered = 0;
};

/// Answers the questions that are not answered yet. Where it throws, the next one is the reason.
using RowPredicate = RepeatingCallback<void(RowQuestions& questions)>;

class DATABINDING_API FilteredView final : public ListView {
 public:
  using Properties = std::span<PropertyBase* const>;

  FilteredView(ListNode& itsNode, ListNode& itsSource, void (*emptyNode)(ListNode& self),
               RowPredicate function, Properties properties);
  ~FilteredView() = default;

  /// Filters by another function, and follows other properties. Waits while the family tells a
  /// change.
  void SetFilter(RowPredicate function, Properties properties);
  /// Asks for all rows again. Waits as SetFilter does.
  void Refilter();

 private:
  void Evaluate() noexcept override;
  void Remove(const ListStep& step) noexcept override;
  void PassOn(const ListStep& step) noexcept override;
  void TakeTarget(const ListStep& step) noexcept override;
  void Insert(const ListStep& step) noexcept override;
  void Move(const ListStep& step) noexcept override;
  void AskChanged(const ListStep& step) noexcept override;

  [[nodiscard]] std::vector<Subscription> Follow(Properties properties);
  [[nodiscard]] bool TakeShown(const ListStep& step) noexcept;
  void FilterBy(RowPredicate& function, std::vector<Subscription>& following);
  void AskAnew();
  void Ask(std::span<const RowId> ids) noexcept;
  void AskFew(std::span<const RowId> ids) noexcept;
  template <class Visit>
  void CompareAnswers(Visit visit) noexcept;
  [[nodiscard]] bool AreAnswersMany() const noexcept;
  bool TellAnswers() noexcept;
  [[nodiscard]] std::size_t FindPlace(std::size_t place, std::size_t first,
                                      std::size_t end) const noexcept;

  RowPredicate predicate;
  std::vector<Subscription> followed;
  ListStep passedOn;  // the change of fields that is told
};

}  // namespace DataBinding::details

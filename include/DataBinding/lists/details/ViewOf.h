// SPDX-License-Identifier: Apache-2.0
/// A ViewOf makes a list of a view: it answers for the list by a ListView, which does not know the
/// type of the rows. Base is a ReadableList<Row>, or AnyList for rows of any type.
///
/// The view's destructor is the first that runs, so its observers hear the end while the list that
/// it follows, and all rows, can still be read.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "DataBinding/lists/details/ListView.h"

namespace DataBinding::details {

template <class Base, class View>
class ViewOf : public Base {
 public:
  [[nodiscard]] std::size_t Size() const noexcept final { return view.Size(); }
  [[nodiscard]] RowId At(std::size_t index) const noexcept final { return view.At(index); }
  [[nodiscard]] std::size_t IndexOfRow(RowId id) const noexcept final { return view.IndexOf(id); }
  [[nodiscard]] const void* RowOf(RowId id) const noexcept final { return view.RowOf(id); }
  [[nodiscard]] TypedRow RowAtPlace(std::size_t index) const noexcept final {
    return {index < view.Size() ? view.RowOf(view.At(index)) : nullptr, this->Table()};
  }
  void CopyRows(std::span<const RowId> ids, const void** to) const noexcept final {
    view.CopyRows(ids, to);
  }
  [[nodiscard]] RowId IdsBelow() const noexcept final { return view.IdsBelow(); }
  SetResult UpdateRow(RowId id, const RowEdit& edit) final { return view.UpdateRow(id, edit); }
  [[nodiscard]] bool IsReadOnly() const final { return view.IsReadOnly(); }
  [[nodiscard]] const std::shared_ptr<ListTurns>& Turns() const noexcept final {
    return view.Turns();
  }
  [[nodiscard]] bool HasNewRows() const noexcept final { return view.HasNewRows(); }
  [[nodiscard]] bool IsSourceGoing() const noexcept final { return view.IsSourceGoing(); }
  [[nodiscard]] VtrString ListName() const final { return view.ListName(); }
  void CopyIds(std::size_t at, std::span<RowId> to) const noexcept final { view.CopyIds(at, to); }

 protected:
  template <class... Settings>
  explicit ViewOf(Base& list, Settings&&... settings)
      : view(*this, list, &EmptyView, std::forward<Settings>(settings)...) {}
  ~ViewOf() override = default;

  View view;

 private:
  static void EmptyView(ListNode& self) { static_cast<ViewOf&>(self).view.Empty(); }
  [[nodiscard]] ListPlan Pending() const noexcept final { return view.Pending(); }
  bool Awaken() final { return view.Awaken(); }
};

}  // namespace DataBinding::details

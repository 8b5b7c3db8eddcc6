// SPDX-License-Identifier: Apache-2.0
/// A ListConnection finds the list of a ListBind or AnyListBind by name, and has the bind's rows
/// show it. BoundList is what both binds have in common.
///
/// The rows are the first subscriber of the connection, so that all others find them up to date,
/// and any of them may end the bind.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "DataBinding/Export.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/IBaseDataBind.h"
#include "DataBinding/framework/details/BoundRows.h"
#include "DataBinding/lists/AnyList.h"
#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding::details {

class DATABINDING_API ListConnection final : public BindConnection {
 public:
  /// A list must have rows of this type; null stands for any. Both outlive the connection.
  ListConnection(const Framework::IBaseBind& bind, const RowTable* wantedRows, BoundRows& shown);
  ~ListConnection() override;

  [[nodiscard]] bool HasValue() const override { return List() != nullptr; }
  [[nodiscard]] bool IsReadOnly() const;
  /// The status says, too, what is wrong with the rows of a list that was found.
  [[nodiscard]] Framework::BindStatus Status() const override;

 private:
  /// A list that was found by name and has rows of the wanted type, or the reason why not.
  class DATABINDING_API ListRef final : public PropertyRefBase {
   public:
    ListRef(IDataSource* source, const VtrString& list, const RowTable* wanted);
    [[nodiscard]] AnyList* List() const;
  };

  const PropertyRefBase& Refer(IDataSource* newSource, const VtrString& name) override;
  [[nodiscard]] AnyList* List() const;

  const RowTable* wanted;
  BoundRows& rows;
  mutable ListRef property;
  Subscription first;
};

/// Base is a ReadableList<Row>, or AnyList for rows of any type.
template <class Base>
class BoundList : public Base, public Framework::IBaseDataBind {
 public:
  ~BoundList() override { this->TellEnd(&Empty); }

  void Connect(IDataSourceProvider* provider) override { connection.Connect(*this, provider); }
  /// Returns Data, as every value bind does.
  [[nodiscard]] Framework::BindTypeEnum BindType() const override {
    return Framework::BindTypeEnum::Data;
  }
  [[nodiscard]] Framework::BindStatus Status() const override { return connection.Status(); }
  /// Returns true when only the list's own source changes it.
  [[nodiscard]] bool IsReadOnly() const override { return connection.IsReadOnly(); }
  /// Returns true while there is a list of that name with rows of the wanted type.
  [[nodiscard]] bool HasValue() const override { return connection.HasValue(); }
  /// Runs the callback when the list is announced, comes, goes, or is replaced by another one. The
  /// rows are up to date then, unless they wait until another change was told.
  Subscription SubscribeToChanges(const Framework::ChangeCallback& callback) override {
    return connection.Subscribe(callback);
  }

  [[nodiscard]] std::size_t Size() const noexcept final { return rows.Order().Size(); }
  [[nodiscard]] RowId At(std::size_t index) const noexcept final { return rows.Order().At(index); }
  [[nodiscard]] std::size_t IndexOfRow(RowId id) const noexcept final {
    return rows.Order().IndexOf(id);
  }
  [[nodiscard]] const void* RowOf(RowId id) const noexcept final { return rows.RowOf(id); }
  [[nodiscard]] RowId IdsBelow() const noexcept final { return rows.IdsBelow(); }
  [[nodiscard]] bool IsSourceGoing() const noexcept final { return rows.IsSourceGoing(); }
  [[nodiscard]] bool HasNewRows() const noexcept final {
    return Base::HasNewRows() || (rows.List() != nullptr && rows.List()->HasNewRows());
  }
  [[nodiscard]] const std::shared_ptr<ListTurns>& Turns() const noexcept final {
    return rows.Turns();
  }
  [[nodiscard]] VtrString ListName() const final { return Path(); }
  SetResult UpdateRow(RowId id, const RowEdit& edit) final { return rows.UpdateRow(id, edit); }
  SetResult MoveRows(std::size_t from, std::size_t count, std::size_t to) final {
    return this->MoveRowsOf(rows.List(), from, count, to);
  }
  [[nodiscard]] bool CanMoveRows() const final {
    return rows.List() != nullptr && rows.List()->CanMoveRows();
  }

 protected:
  BoundList(const VtrString& context, const VtrString& source, const VtrString& list,
            const RowTable* wanted)
      : IBaseDataBind(context, source, list), rows(*this), connection(*this, wanted, rows) {}

  static void Empty(ListNode& self) noexcept { static_cast<BoundList&>(self).rows.Clear(); }

  BoundRows rows;

 private:
  [[nodiscard]] ListPlan Pending() const noexcept final { return rows.Pending(); }

  ListConnection connection;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// An EventBind is a button's end of an application event. Its path is the event's name.
///
/// Raise raises AppEvent<IDataContext*>(Path()) with the data context that the bind stands in.
/// Delivery comes later, so the context must live until then, or the application must tell the
/// event's listeners that it has ended. The application itself defines
/// `class DataBinding::IDataContext`, once for all its modules. A bind is used on one thread, that
/// of the provider tree, on which events are delivered, too.
///
///   Framework::EventBind remove(L"", L"", L"RemoveItem");
///   remove.Connect(&provider);
///   button.onClick = [&] { remove.Raise(); };
///   Subscription enabling =
///       remove.SubscribeToChanges([&] { button.Enable(remove.CanRaise()); });
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/framework/IEventBind.h"

namespace DataBinding {

namespace details {
class EventBindListener;
}  // namespace details

namespace Framework {

/// The event is raised for a data context. Once the bind has a data context bind, that bind's value
/// is the context, and without a value nothing is raised. Otherwise the context is that of the
/// scope with which a DataBind would begin: the nearest one, from the connected one outward, that
/// has the data context's name as a category. The data source's name only stands in the tracking
/// name.
///
/// The origin of the events is the module whose code makes the bind: see ThisModule.
class DATABINDING_API EventBind final : public IEventBind {
 public:
  DATABINDING_MODULE_LOCAL EventBind() : EventBind(VtrString(), VtrString(), VtrString()) {}
  /// Takes the three names; the last one is the event's. The bind stands in no data context until
  /// Connect.
  DATABINDING_MODULE_LOCAL EventBind(const VtrString& context, const VtrString& source,
                                     const VtrString& eventName)
      : EventBind(context, source, eventName, ThisModule()) {}
  ~EventBind() override;

  void Connect(IDataSourceProvider* provider) override;
  /// Answers Connected where there is an event to raise and a data context to raise it for, null or
  /// not.
  [[nodiscard]] BindStatus Status() const override;
  /// Returns the path, or an empty name for the null-path marker.
  [[nodiscard]] VtrString EventName() const override;
  /// Returns false also while the event's name is disabled, since a command that somebody has
  /// switched off is not to be carried out later. Status does not tell of that.
  [[nodiscard]] bool CanRaise() const override;
  /// Raises the event. This fixes the signature of the event, while asking CanRaise or Status does
  /// not.
  bool Raise() override;
  [[nodiscard]] IDataContext* DataContext() const override;
  /// Tells also when the bind is connected, when its scope ends, or an outer one where the data
  /// context has a category's name, and when the event's name is disabled or enabled. Does not tell
  /// when a scope gets another parent, nor when the name gets another signature. When the
  /// broadcaster is released, the subscription tells no more of disabled names.
  Subscription SubscribeToChanges(const RepeatingCallback<void()>& callback) override;

 private:
  friend details::EventBindListener;
  EventBind(const VtrString& context, const VtrString& source, const VtrString& eventName,
            const void* raisedFrom);

  /// Answers Unbound or WrongType where no event may be raised, else Connected.
  [[nodiscard]] BindStatus EventStatus() const;
  [[nodiscard]] IDataSourceProvider* Scope() const;
  [[nodiscard]] IDataSourceProvider* ContextScope() const;
  /// Returns the context to raise the event for, which may be null, or nothing where there is no
  /// context.
  [[nodiscard]] std::optional<IDataContext*> FindContext() const;

  const void* origin;
  /// The listener of the scope that the bind was given, and where a category is wanted, those of
  /// the outer ones.
  std::vector<std::unique_ptr<details::EventBindListener>> scopeListeners;
  Subscription disabling;
};

}  // namespace Framework

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// EventBind: a button's end of an application event. Its path is the event's name.
///
/// Raise raises AppEvent<IDataContext*>(Path()) with the data context that the bind stands in.
/// Delivery comes later, so the context must live until then, or be told of its end. The
/// application defines `class DataBinding::IDataContext` itself, once for all its modules. One
/// thread, that of the provider tree.
///
///   Framework::EventBind remove(L"", L"", L"RemoveItem");
///   remove.Connect(&provider);
///   button.onClick = [&] { remove.Raise(); };
#pragma once

#include <memory>
#include <optional>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/framework/IEventBind.h"

namespace DataBinding {

namespace details {
class EventBindListener;
}  // namespace details

namespace Framework {

/// A data context bind, once there is one, alone says what the event is raised for: without its
/// value nothing is raised. Else it is the context of the scope that a DataBind would begin with,
/// which is the nearest one, from the connected one outward, that has the data context's name as a
/// category. The data source's name only stands in the tracking name.
///
/// The events belong to the module whose code makes the bind: see ThisModule.
class DATABINDING_API EventBind final : public IEventBind {
 public:
  DATABINDING_MODULE_LOCAL EventBind() : EventBind(VtrString(), VtrString(), VtrString()) {}
  /// Of the three names, the last one the event's. Stands in no data context until Connect.
  DATABINDING_MODULE_LOCAL EventBind(const VtrString& context, const VtrString& source,
                                     const VtrString& eventName)
      : EventBind(context, source, eventName, ThisModule()) {}
  ~EventBind() override;

  void Connect(IDataSourceProvider* provider) override;
  /// Connected where there is an event to raise and a data context to raise it for, null or not.
  [[nodiscard]] BindStatus Status() const override;
  /// The path, or an empty name for the null-path marker.
  [[nodiscard]] VtrString EventName() const override;
  [[nodiscard]] bool CanRaise() const override;
  /// Fixes the signature of the event, unlike the questions.
  void Raise() override;
  [[nodiscard]] IDataContext* DataContext() const override;

 private:
  EventBind(const VtrString& context, const VtrString& source, const VtrString& eventName,
            const void* ownerKey);

  /// Unbound or WrongType where there is no event that may be raised, else Connected.
  [[nodiscard]] BindStatus EventStatus() const;
  [[nodiscard]] IDataSourceProvider* Scope() const;
  [[nodiscard]] IDataSourceProvider* ContextScope() const;
  /// The context to raise the event for, if there is one, be it null.
  [[nodiscard]] std::optional<IDataContext*> FindContext() const;

  const void* owner;
  std::unique_ptr<details::EventBindListener> scopeListener;
};

}  // namespace Framework

}  // namespace DataBinding

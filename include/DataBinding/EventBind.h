/// EventBind: a button's end of an application event. Its path is the event's name.
///
/// Raise raises AppEvent<IDataContext*>(Path()) with the data context that the bind stands in: the
/// value of its data context bind where that has one, else the context of the scope that it is
/// connected to, which it does not own. Listeners so learn for what the event was raised. One
/// thread, that of the provider tree.
///
///   Framework::EventBind remove(L"", L"", L"RemoveItem");
///   remove.Connect(&provider);
///   button.onClick = [&] { remove.Raise(); };
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/IEventBind.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding::Framework {

class DATABINDING_API EventBind final : public IEventBind {
 public:
  EventBind();
  EventBind(const VtrString& context, const VtrString& source, const VtrString& eventName);
  ~EventBind() override;

  void Connect(IDataSourceProvider* provider) override;
  /// Connected where there is an event to raise and a scope or a data context bind to say for what.
  [[nodiscard]] BindStatus Status() const override;
  /// The path, or an empty name for the null-path marker.
  [[nodiscard]] VtrString EventName() const override;
  [[nodiscard]] bool CanRaise() const override;
  /// Does nothing without an event name. Throws std::logic_error where the event of that name has
  /// another signature.
  void Raise() override;
  [[nodiscard]] IDataContext* DataContext() const override;

 private:
  IDataSourceProvider* scope = nullptr;
  details::WeakReference scopeLiveness;
};

}  // namespace DataBinding::Framework

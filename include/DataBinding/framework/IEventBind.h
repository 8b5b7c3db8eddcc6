// SPDX-License-Identifier: Apache-2.0
/// An IEventBind raises an event with the data context that it currently stands in.
///
/// It may follow a data context that changes: it owns the bind whose value that context is, and
/// runs a callback whenever that bind notifies. An event bind is used on one thread, that of the
/// provider tree.
///
/// Re-entrancy: the callback may give this event bind another data context bind, notify again, or
/// end the event bind. The callback stays alive until it returns, and the data context bind that it
/// was called with stays alive until the outermost call returns.
#pragma once

#include <memory>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/SafeFunction.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/IBaseBind.h"
#include "DataBinding/framework/IDataBind.h"

namespace DataBinding::Framework {

/// An IEventBind is neither copied nor moved, because it subscribes to the data context bind with
/// its own address.
class DATABINDING_API IEventBind : public IBaseBind {
 public:
  /// The callback gets this bind and the data context's bind that has notified.
  using DataContextCallback =
      basic_safe_function<void(Framework::IEventBind*, Framework::IDataBind<IDataContext*>*), 1>;

  IEventBind();
  /// Takes the three names; the last one is the event's.
  IEventBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
             const VtrStringT<wchar_t>& pathInSource);
  IEventBind(const IEventBind&) = delete;
  IEventBind& operator=(const IEventBind&) = delete;
  ~IEventBind() override;

  /// Returns Event, as every event bind does.
  [[nodiscard]] BindTypeEnum BindType() const override;
  /// Returns the name of the event, or an empty one.
  [[nodiscard]] virtual VtrString EventName() const = 0;
  /// Returns true when Raise would raise an event.
  [[nodiscard]] virtual bool CanRaise() const = 0;
  /// Raises the event with the current data context, and returns true. Where CanRaise is false, it
  /// does nothing and returns false.
  virtual bool Raise() = 0;
  /// Returns the data context that the bind stands in, or null.
  [[nodiscard]] virtual IDataContext* DataContext() const = 0;

  /// Calls the callback whenever the answer of CanRaise may have become another one, until the
  /// subscription ends. The base tells when the data context's bind notifies or is replaced. The
  /// callback may do anything, also end the event bind; then no other one is called. What it throws
  /// leaves Connect or SetDataContextBind when all were called. Where a property, a source or a
  /// scope has changed the data context, or the event's name was disabled or enabled, it is treated
  /// as what a callback of these throws: a property's goes to the handler of
  /// SetListenerFailureHandler, a disabled name's to the broadcaster's error handler, and a scope's
  /// destructor drops it.
  virtual Subscription SubscribeToChanges(const RepeatingCallback<void()>& callback);

  /// Takes over the bind of the data context, and runs the callback with (this, that bind) whenever
  /// it notifies, but not now. The bind that was set before is ended; a null bind puts none in its
  /// place. If subscribing to the new bind throws, there is none either, and the exception is let
  /// out, after the callbacks of SubscribeToChanges, whose own exceptions are dropped.
  void SetDataContextBind(std::unique_ptr<Framework::IDataBind<IDataContext*>> bind,
                          DataContextCallback callback);

 protected:
  /// Returns the bind of the data context, or null.
  [[nodiscard]] IDataBind<IDataContext*>* DataContextBind() const noexcept {
    return dataContextBind.get();
  }
  /// Calls the callbacks of SubscribeToChanges, which may end this bind.
  void TellChange() { changes.CallAll(); }

 private:
  class Run;

  void OnDataContextChanged();
  void RunDataContextCallback();
  void EndDataContextBind() noexcept;

  // These members end in reverse order: the subscription first, then the callback, then the bind.
  std::unique_ptr<Framework::IDataBind<IDataContext*>> dataContextBind;
  DataContextCallback dataContextCallback;
  Subscription dataContextSubscription;
  CallbackList<> changes;
  /// Points to the innermost call of the callback that is under way.
  Run* running = nullptr;
};

}  // namespace DataBinding::Framework

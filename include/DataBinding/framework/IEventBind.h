// SPDX-License-Identifier: Apache-2.0
/// A bind that raises an event, with the data context that it currently stands in.
///
/// It may follow a data context that changes: it owns the bind whose value that context is, and
/// runs a callback whenever that bind notifies. One thread, that of the provider tree.
///
/// Re-entrancy: the callback may give this event bind another data context bind, notify again, or
/// end the event bind. It stays alive until it returns, and the data context bind that it was
/// called with until the outermost call returns.
#pragma once

#include <memory>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/SafeFunction.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/IBaseBind.h"
#include "DataBinding/framework/IDataBind.h"

namespace DataBinding::Framework {

/// Neither copied nor moved: what it subscribes to the data context bind is its own address.
class DATABINDING_API IEventBind : public IBaseBind {
 public:
  /// Gets this bind and the data context's bind that has notified.
  using DataContextCallback =
      basic_safe_function<void(Framework::IEventBind*, Framework::IDataBind<IDataContext*>*), 1>;

  IEventBind();
  /// Of the three names, the last one the event's.
  IEventBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
             const VtrStringT<wchar_t>& pathInSource);
  IEventBind(const IEventBind&) = delete;
  IEventBind& operator=(const IEventBind&) = delete;
  ~IEventBind() override;

  /// Event, for every event bind.
  [[nodiscard]] BindTypeEnum BindType() const override;
  /// The name of the event, or an empty one.
  [[nodiscard]] virtual VtrString EventName() const = 0;
  /// True when Raise would raise an event.
  [[nodiscard]] virtual bool CanRaise() const = 0;
  /// Raises the event with the current data context; does nothing where CanRaise is false.
  virtual void Raise() = 0;
  /// The data context that the bind stands in, or null.
  [[nodiscard]] virtual IDataContext* DataContext() const = 0;

  /// Takes over the bind of the data context, and runs the callback with (this, that bind) whenever
  /// it notifies, but not now. What was set before is ended. A null bind only does that, and so
  /// does one that cannot be subscribed to: what it throws is let out.
  void SetDataContextBind(std::unique_ptr<Framework::IDataBind<IDataContext*>> bind,
                          DataContextCallback callback);

 protected:
  /// The bind of the data context, or null.
  [[nodiscard]] IDataBind<IDataContext*>* DataContextBind() const noexcept {
    return dataContextBind.get();
  }

 private:
  class Run;

  void OnDataContextChanged();
  void EndDataContextBind() noexcept;

  // Ended in reverse: the subscription first, then the callback, then the bind.
  std::unique_ptr<Framework::IDataBind<IDataContext*>> dataContextBind;
  DataContextCallback dataContextCallback;
  Subscription dataContextSubscription;
  /// The innermost call of the callback that is under way.
  Run* running = nullptr;
};

}  // namespace DataBinding::Framework

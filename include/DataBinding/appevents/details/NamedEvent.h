// SPDX-License-Identifier: Apache-2.0
/// The part of a raised AppEvent that does not depend on its signature: how it is queued, held and
/// delivered.
///
/// Delivery subscribes the listeners that wait for it, holds the event back if its name is
/// disabled, calls the listeners in order of subscription and then the hooks. What one of them
/// throws goes to the broadcaster's error handler and stops nobody else. Owned through
/// std::shared_ptr. AppEvent is its user.
#pragma once

#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/appevents/EventBroadcaster.h"
#include "DataBinding/appevents/details/EventName.h"
#include "DataBinding/foundation/Any.h"
#include "DataBinding/foundation/CallbackList.h"

namespace DataBinding::details {

/// The listeners of one event at one broadcaster.
struct EventChannel {
  CallbackListBase listeners;
};

class DATABINDING_API NamedEvent : public PendingEventBase {
 public:
  using Ptr = PolicyEventBroadcaster::EventPtr;

  ~NamedEvent() override;

  void Dispatch(PolicyEventBroadcaster& broadcaster) final;
  /// Queues the event at the process's broadcaster. Any thread.
  static void Queue(const EventName& name, Ptr&& event, bool replaceLast);
  /// Delivers the event at once, by the same rules.
  static void Send(const Ptr& event);
  /// Adds a listener of the name's signature.
  static Subscription Subscribe(IAppEventBroadcaster& broadcaster, const EventName& name,
                                const RepeatingCallbackMemento& callback);
  /// Whether anybody is subscribed to the name at the process's broadcaster.
  [[nodiscard]] static bool HasListeners(const EventName& name);

 protected:
  NamedEvent(const EventName& eventName, const void* ownerKey) noexcept
      : PendingEventBase(ownerKey), name(eventName) {}

 private:
  /// Calls the rest of the walk. After an exception it is called again.
  virtual void CallListeners(CallbackWalk& walk) const = 0;
  [[nodiscard]] virtual std::vector<Any> BoxArguments() const = 0;
  template <class Step>
  bool Guarded(const DeliveryScope& scope, PolicyEventBroadcaster& broadcaster, Step step);

  const EventName& name;
};

/// A raised event with its arguments.
template <class... Args>
class TypedEvent final : public NamedEvent {
 public:
  TypedEvent(const EventName& eventName, const void* ownerKey, Args... values)
      : NamedEvent(eventName, ownerKey), arguments(std::move(values)...) {}

 private:
  void CallListeners(CallbackWalk& walk) const override {
    std::apply([&](const Args&... args) { CallbackList<Args...>::CallRest(walk, args...); },
               arguments);
  }
  [[nodiscard]] std::vector<Any> BoxArguments() const override {
    std::vector<Any> boxed;
    boxed.reserve(sizeof...(Args));
    std::apply([&](const Args&... args) { (boxed.emplace_back(args), ...); }, arguments);
    return boxed;
  }

  std::tuple<Args...> arguments;
};

}  // namespace DataBinding::details

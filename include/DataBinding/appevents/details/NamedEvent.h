// SPDX-License-Identifier: Apache-2.0
/// NamedEvent is the part of a raised AppEvent that does not depend on its signature: how it is
/// queued, held and delivered.
///
/// A delivery first subscribes the listeners that wait in WAppEventRegistrar. If the event's name
/// is disabled, it holds the event. Otherwise it calls the listeners in order of subscription, and
/// then the hooks. When one of them throws, the broadcaster's error handler gets the exception, and
/// the others are called all the same. Events are owned through std::shared_ptr. AppEvent uses
/// this.
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
  /// Delivers the event at once, at the process's broadcaster.
  static void Send(const Ptr& event);
  /// Adds a listener. The callback must have the name's signature, which is not checked here.
  static Subscription Subscribe(IAppEventBroadcaster& broadcaster, const EventName& name,
                                const RepeatingCallbackMemento& callback);
  /// See AppEvent::HasListeners.
  [[nodiscard]] static bool HasListeners(const EventName& name);

 protected:
  NamedEvent(const EventName& eventName, const void* ownerKey) noexcept
      : PendingEventBase(ownerKey), name(eventName) {}

 private:
  /// Calls the listeners that the walk has not reached. It is called again when one has thrown.
  virtual void CallListeners(CallbackWalk& walk) const = 0;
  /// Copies the arguments for the hooks.
  [[nodiscard]] virtual std::vector<Any> BoxArguments() const = 0;

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

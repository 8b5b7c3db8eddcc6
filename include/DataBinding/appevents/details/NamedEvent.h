// SPDX-License-Identifier: Apache-2.0
/// A NamedEvent is the part of a raised AppEvent that does not depend on its signature: how it is
/// held and delivered. A TypedEvent adds the arguments.
///
/// A delivery first subscribes the listeners that wait in WAppEventRegistrar. If the event's name
/// is disabled, it holds the event. Otherwise it calls the listeners in order of subscription, and
/// then the hooks. When one of them throws, the broadcaster's error handler gets the exception, and
/// the others are called all the same. Events are owned through std::shared_ptr. AppEvent uses
/// this.
#pragma once

#include <tuple>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/EventBroadcaster.h"
#include "DataBinding/appevents/details/EventName.h"
#include "DataBinding/foundation/Any.h"
#include "DataBinding/foundation/CallbackList.h"

namespace DataBinding::details {

class DATABINDING_API NamedEvent : public PendingEventBase {
 public:
  ~NamedEvent() override;

  void Dispatch(PolicyEventBroadcaster& broadcaster) final;
  /// See AppEvent::HasListeners.
  [[nodiscard]] static bool HasListeners(const EventName& name);

 protected:
  NamedEvent(const EventName& name, const void* raisedFrom) noexcept
      : PendingEventBase(raisedFrom, name) {}

 private:
  /// Calls the listeners that the walk has not reached. It is called again when one has thrown.
  virtual void CallListeners(CallbackWalk& walk) const = 0;
  /// Copies the arguments for the hooks.
  [[nodiscard]] virtual std::vector<Any> BoxArguments() const = 0;
};

/// A raised event with its arguments.
template <class... Args>
class TypedEvent final : public NamedEvent {
 public:
  TypedEvent(const EventName& name, const void* raisedFrom, Args... values)
      : NamedEvent(name, raisedFrom), arguments(std::move(values)...) {}

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

// SPDX-License-Identifier: Apache-2.0
/// A multicast event: callbacks subscribe and are run, in order of subscription, when it is raised.
///
/// A raise runs those that were subscribed when it began and still are when reached; one that
/// subscribes meanwhile waits for the next raise. A callback may subscribe, cancel or destroy the
/// event. An exception from a callback leaves the raise. Subscriptions may outlive the event. One
/// thread only.
#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/foundation/details/Cancellation.h"

namespace VtrUtils {

/// The part of an event that does not depend on its signature. Tokens ascend and are not reused.
class DATABINDING_API EventBase : private SupportsWeakPtr<EventBase> {
 public:
  EventBase(const EventBase&) = delete;
  EventBase& operator=(const EventBase&) = delete;

 protected:
  EventBase();
  ~EventBase();

  /// Adds a listener until the subscription is cancelled. An empty memento is counted and skipped.
  Subscription Subscribe(const RepeatingCallbackMemento& memento);
  /// What a raise walks over, so that callbacks may subscribe and cancel meanwhile.
  [[nodiscard]] std::set<unsigned long long> GetListenerTokensCopy() const;
  /// The memento of a token that is still subscribed and not paused, else an empty one.
  [[nodiscard]] RepeatingCallbackMemento GetListener(unsigned long long token) const;
  /// True while a listener is subscribed, be its callback empty.
  [[nodiscard]] bool HasListeners() const noexcept { return !listeners.empty(); }
  /// Tells a raise whether a callback has ended the event.
  [[nodiscard]] WeakPtr<EventBase> GetWeakPtr() { return AsWeakPtr(); }

 private:
  friend SupportsWeakPtr<EventBase>;
  class Registration;
  struct Listener {
    RepeatingCallbackMemento callback;
    int pauses = 0;
  };

  std::map<unsigned long long, Listener> listeners;
  unsigned long long lastToken = 0;
};

template <class Signature>
class Event;

template <class... Args>
class Event<void(Args...)> : public EventBase {
 public:
  Event() = default;
  ~Event() = default;

  /// Runs the callback at each raise, after those that came before it, until the subscription ends.
  Subscription Subscribe(const RepeatingCallback<void(Args...)>& callback) {
    return EventBase::Subscribe(callback.GetMemento());
  }
  /// The same for a callback of this signature that is kept without it.
  Subscription Subscribe(const RepeatingCallbackMemento& memento) {
    return EventBase::Subscribe(memento);
  }

  /// Runs the callbacks. What one throws comes out of here, and those behind it are not run.
  void Raise(const Args&... args) {
    RaiseEach([] { throw; }, args...);
  }
  /// Raises the event; what a callback throws goes to `failed`, called within the catch block, and
  /// the next one runs.
  template <class Failed>
  DATABINDING_CATCHES_CANCELLATION void RaiseEach(Failed failed, const Args&... args) {
    if (!HasListeners()) return;
    const auto self = GetWeakPtr();
    for (const auto token : GetListenerTokensCopy()) {
      if (!self) return;
      RepeatingCallback<void(Args...)> callback;
      callback.SetMemento(GetListener(token));
      try {
        callback(args...);
      }
      DATABINDING_PASS_CANCELLATION catch (...) { failed(); }
    }
  }
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Event;
using VtrUtils::EventBase;
}  // namespace DataBinding

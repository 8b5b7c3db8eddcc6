// SPDX-License-Identifier: Apache-2.0
/// An Event runs the callbacks that are subscribed to it, in the order of their subscription, when
/// it is raised.
///
/// A raise runs the callbacks that were subscribed when it began and that still are when it reaches
/// them. A callback that is subscribed during a raise is first run by the next one. A callback may
/// subscribe others, cancel subscriptions, and destroy the event. An exception from a callback
/// leaves the raise. Subscriptions may outlive the event. All of it belongs to one thread.
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

/// This is the part of an event that does not depend on its signature. Each listener has a token;
/// tokens ascend and are not used again.
class DATABINDING_API EventBase : private SupportsWeakPtr<EventBase> {
 public:
  EventBase(const EventBase&) = delete;
  EventBase& operator=(const EventBase&) = delete;

 protected:
  EventBase();
  ~EventBase();

  /// Adds a listener, which stays until the subscription is cancelled. A listener with an empty
  /// memento is counted, and skipped by a raise.
  Subscription Subscribe(const RepeatingCallbackMemento& memento);
  /// Returns a copy of the tokens, which a raise goes through so that callbacks may subscribe and
  /// cancel meanwhile.
  [[nodiscard]] std::set<unsigned long long> GetListenerTokensCopy() const;
  /// Returns the memento of a listener, or an empty one if the listener is paused or no longer
  /// subscribed.
  [[nodiscard]] RepeatingCallbackMemento GetListener(unsigned long long token) const;
  /// Returns true while a listener is subscribed, even if its callback is empty.
  [[nodiscard]] bool HasListeners() const noexcept { return !listeners.empty(); }
  /// Returns the pointer by which a raise learns whether a callback has destroyed the event.
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

  /// Runs the callback at each raise until the subscription ends.
  Subscription Subscribe(const RepeatingCallback<void(Args...)>& callback) {
    return EventBase::Subscribe(callback.GetMemento());
  }
  /// Does the same with a callback of this signature that is held by a memento. A callback of
  /// another signature is skipped by each raise.
  Subscription Subscribe(const RepeatingCallbackMemento& memento) {
    return EventBase::Subscribe(memento);
  }

  /// Runs the callbacks. If one throws, the exception leaves this call and the callbacks behind it
  /// are not run.
  void Raise(const Args&... args) {
    RaiseEach([] { throw; }, args...);
  }
  /// Runs the callbacks. If one throws, `failed` is called within the catch block, and the next
  /// callback runs.
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

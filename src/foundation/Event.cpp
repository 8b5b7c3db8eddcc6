// SPDX-License-Identifier: Apache-2.0
// This file holds the part of an event that does not depend on its signature: the table of its
// listeners, and the state behind a Subscription.
#include "DataBinding/foundation/Event.h"

#include <utility>

#include "DataBinding/foundation/details/Registration.h"

namespace VtrUtils {

/// A Registration is the state behind the Subscription of an event.
class EventBase::Registration final : public details::RegistrationState<Registration> {
 public:
  Registration(WeakPtr<EventBase> subscribed, unsigned long long number) noexcept
      : event(std::move(subscribed)), token(number) {}

  void End() {
    // The listener is released after it has left the table, since its end may run any code.
    if (event) const auto removed = event->listeners.extract(token);
  }
  void EndAndWait() { End(); }
  void Pause() { AddPauses(1); }
  void Resume() { AddPauses(-1); }
  [[nodiscard]] bool IsGone() const noexcept { return !event.IsValid(); }

 private:
  void AddPauses(int change) {
    if (!event) return;
    const auto found = event->listeners.find(token);
    if (found != event->listeners.end()) found->second.pauses += change;
  }

  WeakPtr<EventBase> event;
  unsigned long long token;
};

EventBase::EventBase() = default;

EventBase::~EventBase() {
  InvalidateWeakPtrs();
  // Each listener is released after it has left the table, since its end may run any code.
  while (!listeners.empty()) const auto ended = listeners.extract(listeners.begin());
}

Subscription EventBase::Subscribe(const RepeatingCallbackMemento& memento) {
  const auto token = lastToken + 1;
  OneShotCallback<void()> remove{
      comlike_ptr<details::BindStateBase>(new Registration(AsWeakPtr(), token))};
  listeners.emplace(token, Listener{memento});
  lastToken = token;
  return Subscription(std::move(remove));
}

std::set<unsigned long long> EventBase::GetListenerTokensCopy() const {
  std::set<unsigned long long> tokens;
  for (const auto& [token, listener] : listeners) tokens.insert(tokens.end(), token);
  return tokens;
}

RepeatingCallbackMemento EventBase::GetListener(unsigned long long token) const {
  const auto found = listeners.find(token);
  const bool isHeard = found != listeners.end() && found->second.pauses == 0;
  return isHeard ? found->second.callback : RepeatingCallbackMemento();
}

}  // namespace VtrUtils

#include "DataBinding/foundation/Event.h"

#include "DataBinding/foundation/BindWeak.h"

namespace VtrUtils {

EventBase::EventBase() = default;
EventBase::~EventBase() = default;

Subscription EventBase::Subscribe(const RepeatingCallbackMemento& memento) {
  const auto token = lastToken + 1;
  OneShotCallback<void()> remove = BindWeak(AsWeakPtr(), &EventBase::Remove, token);
  listeners.emplace(token, memento);
  lastToken = token;
  return Subscription(std::move(remove));
}

void EventBase::Remove(unsigned long long token) {
  const auto removed = listeners.extract(token);  // released when the table is whole again
}

std::set<unsigned long long> EventBase::GetListenerTokensCopy() const {
  std::set<unsigned long long> tokens;
  for (const auto& [token, memento] : listeners) tokens.insert(tokens.end(), token);
  return tokens;
}

RepeatingCallbackMemento EventBase::GetListener(unsigned long long token) const {
  const auto found = listeners.find(token);
  return found == listeners.end() ? RepeatingCallbackMemento() : found->second;
}

}  // namespace VtrUtils

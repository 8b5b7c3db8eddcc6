// SPDX-License-Identifier: Apache-2.0
// This file holds EventBind: it finds the data context that an event is raised for, and queues the
// event.

#include "DataBinding/framework/EventBind.h"

#include <stdexcept>
#include <utility>

#include "EventBindListener.h"
#include "Explanation.h"

namespace DataBinding::Framework {

namespace {

const std::type_info& signature = typeid(void(IDataContext*));

bool IsDisabled(const VtrString& eventName) {
  return IAppEventBroadcaster::HasInstance() &&
         IAppEventBroadcaster::GetInstance().IsDisable(eventName);
}

}  // namespace

EventBind::EventBind(const VtrString& context, const VtrString& source, const VtrString& eventName,
                     const void* raisedFrom)
    : IEventBind(context, source, eventName), origin(raisedFrom) {}
EventBind::~EventBind() = default;

void EventBind::Connect(IDataSourceProvider* provider) {
  scopeListeners.clear();
  const bool isOuterWanted = details::IsNamed(DataContextName(), nullDataMarker);
  for (auto* scope = provider; scope != nullptr; scope = scope->GetParent()) {
    scopeListeners.push_back(std::make_unique<details::EventBindListener>(*this, *scope));
    if (!isOuterWanted) break;
  }
  TellChange();
}

BindStatus EventBind::Status() const {
  BindStatus status = EventStatus();
  if (!status.IsConnected() || FindContext()) return status;
  if (const auto* followed = DataContextBind()) return followed->Status();
  if (Scope() == nullptr) {
    return {BindStatus::State::NoProvider,
            VtrString().Format(L"There is no scope whose data context event \"%s\" is raised for.",
                               Path())};
  }
  return {BindStatus::State::NoContext,
          VtrString().Format(L"No scope here or further out has the category \"%s\", whose data "
                             L"context event \"%s\" is raised for.",
                             DataContextName(), Path())};
}

VtrString EventBind::EventName() const { return Path() == nullPathMarker ? VtrString() : Path(); }

bool EventBind::CanRaise() const {
  return EventStatus().IsConnected() && FindContext().has_value() && !IsDisabled(EventName());
}

bool EventBind::Raise() {
  using Event = details::TypedEvent<IDataContext*>;
  const auto context = FindContext();
  if (!context || !EventStatus().IsConnected() || IsDisabled(EventName())) return false;
  const auto& name = details::EventName::Find(EventName(), signature);
  auto event = std::make_shared<Event>(name, origin, *context);
  IAppEventBroadcaster::GetInstance().QueueEvent(name.Text(), std::move(event));
  return true;
}

Subscription EventBind::SubscribeToChanges(const RepeatingCallback<void()>& callback) {
  disabling = IAppEventBroadcaster::GetInstance().ObserveDisabling([this](const VtrString& name) {
    if (name == EventName()) TellChange();
  });
  return IEventBind::SubscribeToChanges(callback);
}

IDataContext* EventBind::DataContext() const { return FindContext().value_or(nullptr); }

BindStatus EventBind::EventStatus() const {
  const VtrString name = EventName();
  if (name.IsEmpty()) return {BindStatus::State::Unbound, L"The bind names no event."};
  try {
    details::EventName::Check(name, signature);
    return {BindStatus::State::Connected, {}};
  } catch (const std::logic_error& clash) {
    return {BindStatus::State::WrongType,
            VtrString().Format(L"The bind cannot raise its event: %s.",
                               VtrString::FromUtf8(clash.what()))};
  }
}

IDataSourceProvider* EventBind::Scope() const {
  return scopeListeners.empty() ? nullptr : scopeListeners.front()->Scope();
}

IDataSourceProvider* EventBind::ContextScope() const {
  IDataSourceProvider* scope = Scope();
  const VtrString& category = DataContextName();
  if (!details::IsNamed(category, nullDataMarker)) return scope;
  while (scope != nullptr && !details::HasCategory(*scope, category)) scope = scope->GetParent();
  return scope;
}

std::optional<IDataContext*> EventBind::FindContext() const {
  if (const auto* followed = DataContextBind()) return followed->Get().value;
  IDataSourceProvider* const scope = ContextScope();
  if (scope == nullptr) return std::nullopt;
  return scope->GetDataContext();
}

}  // namespace DataBinding::Framework

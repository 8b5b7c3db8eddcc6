#include "DataBinding/EventBind.h"

#include "DataBinding/AppEvent.h"
#include "DataBinding/IDataSourceProvider.h"

namespace DataBinding::Framework {

EventBind::EventBind() = default;
EventBind::EventBind(const VtrString& context, const VtrString& source, const VtrString& eventName)
    : IEventBind(context, source, eventName) {}
EventBind::~EventBind() = default;

void EventBind::Connect(IDataSourceProvider* provider) {
  scopeLiveness = provider == nullptr ? details::WeakReference() : provider->GetLiveness();
  scope = provider;
}

BindStatus EventBind::Status() const {
  if (!CanRaise()) return {BindState::Unbound, L"The bind names no event."};
  if (scopeLiveness.IsValid() || DataContextBind() != nullptr) return {BindState::Connected, {}};
  return {BindState::NoProvider,
          VtrString().Format(L"There is no scope whose data context event \"%s\" is raised for.",
                             Path())};
}

VtrString EventBind::EventName() const { return Path() == nullPathMarker ? VtrString() : Path(); }

bool EventBind::CanRaise() const { return !EventName().IsEmpty(); }

void EventBind::Raise() {
  if (CanRaise()) AppEvent<IDataContext*>(Path()).Raise(DataContext());
}

IDataContext* EventBind::DataContext() const {
  if (const auto* followed = DataContextBind()) {
    if (const auto context = followed->Get()) return *context;
  }
  return scopeLiveness.IsValid() ? scope->GetDataContext() : nullptr;
}

}  // namespace DataBinding::Framework

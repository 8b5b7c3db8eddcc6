#include "DataBinding/EventBroadcaster.h"

#include <utility>

#include "DataBinding/NamedEvent.h"
#include "DataBinding/foundation/FirstFailure.h"
#include "DeliveryScope.h"
#include "PendingEvents.h"

namespace DataBinding {

namespace {

class QueueLock {
 public:
  explicit QueueLock(AEB::ThreadingPolicy& policy) : held(policy) { held.EnterCriticalSection(); }
  QueueLock(const QueueLock&) = delete;
  QueueLock& operator=(const QueueLock&) = delete;
  ~QueueLock() { held.LeaveCriticalSection(); }

 private:
  AEB::ThreadingPolicy& held;
};

}  // namespace

template <class Update, class Threading>
EventBroadcaster<Update, Threading>::EventBroadcaster()
    : pendingEvents(std::make_unique<details::PendingEvents>()), weakFactory(this) {}

template <class Update, class Threading>
EventBroadcaster<Update, Threading>::~EventBroadcaster() {
  FirstFailure dropped;
  for (auto next = cleanupCallbacks.begin(); next != cleanupCallbacks.end();) {
    void* const owner = next->first;
    auto callback = std::move(next->second);
    dropped.Try([&] { callback(); });
    next = cleanupCallbacks.upper_bound(owner);
  }
  details::DeliveryScope::End(delivery);
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::AnyEventHooksRegistered() const {
  return false;
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::OnEventDispatched(VtrString /*name*/,
                                                            const std::vector<Any>& /*args*/) {}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::EnableEvent(const VtrString& name, bool fireHeldEvent) {
  const auto disabled = disabledEvents.find(name);
  if (disabled == disabledEvents.end() || --disabled->second > 0) return;
  disabledEvents.erase(disabled);
  const auto held = heldEvents.extract(name);
  if (fireHeldEvent && !held.empty()) Deliver(held.mapped());
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DisableEvent(const VtrString& name) {
  ++disabledEvents[name];
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::EnableAllEvents(bool fireHeldEvent) {
  const details::DeliveryScope scope(*this);
  for (auto known = knownEvents.begin(); known != knownEvents.end();) {
    const VtrString name = known->first;
    EnableEvent(name, fireHeldEvent);
    if (scope.IsBroadcasterGone()) return;
    known = knownEvents.upper_bound(name);
  }
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DisableAllEvents() {
  for (const auto& [name, channel] : knownEvents) DisableEvent(name);
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::IsDisable(const VtrString& name) {
  return !disabledEvents.empty() && disabledEvents.contains(name);
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::AnyPendingDisableEvents(const VtrString& name) const {
  return disabledEvents.contains(name) && heldEvents.contains(name);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::AddCleanupCallback(void* owner,
                                                             OneShotCallback<void()> callback) {
  cleanupCallbacks.try_emplace(owner, std::move(callback));
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::RemoveCleanupCallback(void* owner) {
  const auto removed = cleanupCallbacks.extract(owner);  // what it owns may take others off
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DispatchPendingEvents() {
  if (!HasPendingEvents()) return;
  details::DeliveryScope scope(*this);
  auto batch = std::move(pendingEvents->spare);
  if (batch == nullptr) batch = std::make_unique<details::PendingEvents::Batch>();
  {
    const QueueLock guard(threadingPolicy);
    pendingEvents->Take(*batch);
    anyPending.store(false, std::memory_order_relaxed);
  }
  batch->Visit([&](const EventPtr& event) {
    scope.Dispatch(event);
    return !scope.IsBroadcasterGone();
  });
  batch->Clear();
  if (!scope.IsBroadcasterGone()) pendingEvents->spare = std::move(batch);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::Deliver(const EventPtr& event) {
  details::DeliveryScope(*this).Dispatch(event);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::NotifyListenersOnIdleImpl(const VtrString& name,
                                                                    bool replaceLast,
                                                                    EventPtr event) {
  if (event != nullptr) Append(name, replaceLast, std::move(event));
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::QueueNamed(const details::EventName& name,
                                                     bool replaceLast, EventPtr&& event) {
  Append(name, replaceLast, std::move(event));
}

template <class Update, class Threading>
template <class Name>
void EventBroadcaster<Update, Threading>::Append(const Name& name, bool replaceLast,
                                                 EventPtr&& event) {
  const std::uint64_t hash = replaceLast ? details::PendingEvents::Hash(name) : 0;
  EventPtr replaced;
  {
    const QueueLock guard(threadingPolicy);
    if (replaceLast) {
      replaced = pendingEvents->Replace(name, hash, std::move(event));
    } else {
      pendingEvents->Append(name, std::move(event));
    }
    anyPending.store(true, std::memory_order_release);
  }
  if (replaced == nullptr) updatePolicy.PostUpdate();
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::RemoveLastEvent(const VtrString& name) {
  EventPtr removed;
  const QueueLock guard(threadingPolicy);
  removed = pendingEvents->RemoveLast(name, details::PendingEvents::Hash(name));
  return removed != nullptr;
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::QueueEvent(const VtrString& name, EventPtr event,
                                                     bool replaceLast) {
  NotifyListenersOnIdleImpl(name, replaceLast, std::move(event));
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::HasPendingEvents() const noexcept {
  return anyPending.load(std::memory_order_acquire);
}

template <class Update, class Threading>
template <class Matches>
void EventBroadcaster<Update, Threading>::DropQueued(Matches matches) {
  std::vector<EventPtr> dropped;
  const QueueLock guard(threadingPolicy);
  pendingEvents->Drop(matches, dropped);
  anyPending = !pendingEvents->IsEmpty();
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DropEvents(const VtrString& name) {
  DropQueued([&](const auto& entry) { return entry.Name() == name; });
  static_cast<void>(heldEvents.extract(name));
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DropOwner(const void* owner) {
  if (owner == nullptr) return;
  DropQueued([&](const auto& entry) { return entry.event->Owner() == owner; });
  std::vector<EventPtr> dropped;
  for (auto held = heldEvents.begin(); held != heldEvents.end();) {
    const bool matches = held->second->Owner() == owner;
    if (matches) dropped.push_back(held->second);
    held = matches ? heldEvents.erase(held) : std::next(held);
  }
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::SetErrorHandler(ErrorHandler handler) {
  errorHandler = std::move(handler);
}

template <class Update, class Threading>
EventFailure EventBroadcaster<Update, Threading>::TakeFailure() {
  return std::exchange(failure, {});
}

/// The handler may throw in its turn, and may release the broadcaster.
template <class Update, class Threading>
DATABINDING_CATCHES_CANCELLATION void EventBroadcaster<Update, Threading>::ReportFailure(
    const VtrString& name) {
  EventFailure thrown{name, std::current_exception(), 0};
  const details::DeliveryScope scope(*this);
  if (const ErrorHandler handler = errorHandler) {
    try {
      return handler(name, thrown.exception);
    }
    DATABINDING_PASS_CANCELLATION catch (...) { thrown.exception = std::current_exception(); }
  }
  if (scope.IsBroadcasterGone()) return;
  if (failure) {
    ++failure.others;
    return;
  }
  failure = std::move(thrown);
  FirstFailure dropped;  // the failure is kept, whether or not the loop could be woken
  dropped.Try([this] { updatePolicy.PostUpdate(); });
}

template <class Update, class Threading>
details::EventChannel& EventBroadcaster<Update, Threading>::Channel(
    const details::EventName& name) {
  if (channels.size() <= name.Number()) channels.resize(name.Number() + 1);
  auto& channel = channels[name.Number()];
  if (channel == nullptr) {
    auto made = std::make_unique<details::EventChannel>();
    knownEvents[name.Text()] = made.get();
    channel = std::move(made);
  }
  return *channel;
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::PendingEventBase::HoldIfDisabled(
    EventBroadcaster& broadcaster, const VtrString& name, EventPtr event) {
  broadcaster.knownEvents.try_emplace(name, nullptr);
  if (!broadcaster.IsDisable(name)) return false;
  std::swap(broadcaster.heldEvents[name], event);
  return true;
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::PendingEventBase::HasHooks(
    const EventBroadcaster& broadcaster) {
  return broadcaster.AnyEventHooksRegistered();
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::PendingEventBase::NotifyHooks(
    EventBroadcaster& broadcaster, const VtrString& name, const std::vector<Any>& args) {
  broadcaster.OnEventDispatched(name, args);
}

template class EventBroadcaster<AEB::UpdatePolicy, AEB::ThreadingPolicy>;

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
// This file holds the engine of application events, in this order: its end; disabling, holding and
// enabling names; cleanup callbacks; delivery of the queue, whole or within a budget of time, and
// of one event; queueing; dropping events; failures of listeners; the listeners of each name; and
// the helpers with which events of an application's own kinds deliver themselves.
#include "DataBinding/appevents/EventBroadcaster.h"

#include <utility>

#include "DataBinding/appevents/details/NamedEvent.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/foundation/details/VisitInOrder.h"
#include "DeliveryScope.h"
#include "PendingEvents.h"

namespace DataBinding {

template <class Update, class Threading>
EventBroadcaster<Update, Threading>::EventBroadcaster()
    : pendingEvents(std::make_unique<details::PendingEvents>()), weakFactory(this) {}

template <class Update, class Threading>
EventBroadcaster<Update, Threading>::~EventBroadcaster() {
  FirstFailure dropped;
  VisitInOrder(cleanupCallbacks, [&](void* /*owner*/, OneShotCallback<void()>& filed) {
    auto callback = std::move(filed);
    dropped.Try([&] { callback(); });
    return true;
  });
  details::DeliveryScope::End(delivery);
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::AnyEventHooksRegistered() const {
  return false;
}

// The name is passed by value, so that each override has one of its own.
// NOLINTBEGIN(performance-unnecessary-value-param)
template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::OnEventDispatched(VtrString /*name*/,
                                                            const std::vector<Any>& /*args*/) {}
// NOLINTEND(performance-unnecessary-value-param)

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::EnableEvent(const VtrString& name, bool fireHeldEvent) {
  const auto disabled = disabledEvents.find(name);
  if (disabled == disabledEvents.end()) return;
  const auto held = holdCounts.find(name);
  const bool isHeldOnly = held != holdCounts.end() && held->second == disabled->second;
  if (!isHeldOnly) UndoDisable(name, fireHeldEvent);
}

/// Undoes one disable, be it of DisableEvent or of an EventHold. The held event stays held while
/// the observers are called, who may drop it or disable the name again.
template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::UndoDisable(const VtrString& name, bool fireHeldEvent) {
  const auto alive = GetWeakPtr();
  const VtrString kept = name;  // NOLINT(performance-unnecessary-copy-initialization): it may end
  const auto disabled = disabledEvents.find(kept);
  if (disabled == disabledEvents.end() || --disabled->second > 0) return;
  disabledEvents.erase(disabled);
  if (!fireHeldEvent) static_cast<void>(heldEvents.extract(kept));
  if (alive) TellOfDisabling(kept);
  if (!alive || !fireHeldEvent || IsDisable(kept)) return;
  const auto held = heldEvents.extract(kept);
  if (!held.empty()) SendEvent(held.mapped());
}

/// Holds an event of a disabled name. The older event ends after the new one is in its place, since
/// its destructor may use the broadcaster.
template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::HoldEvent(const VtrString& name, EventPtr event) {
  std::swap(heldEvents[name], event);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::BeginHold(const VtrString& name) {
  bool isDisabledNow = false;
  {
    const details::OneThreadVisit visit(pendingEvents->delivering);
    auto& holds = holdCounts[name];
    isDisabledNow = ++disabledEvents[name] == 1;
    ++holds;
  }
  if (isDisabledNow) TellOfDisabling(name);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::EndHold(const VtrString& name,
                                                  bool fireHeldEvent) noexcept {
  {
    const details::OneThreadVisit visit(pendingEvents->delivering);
    const auto held = holdCounts.find(name);
    if (--held->second == 0) holdCounts.erase(held);
  }
  Guard(name, [&] { UndoDisable(name, fireHeldEvent); });
}

/// Gives what the step throws to the error handler. Outside of a delivery a pass is asked for.
template <class Update, class Threading>
template <class Step>
DATABINDING_CATCHES_CANCELLATION void EventBroadcaster<Update, Threading>::Guard(
    const VtrString& name, Step step) {
  const auto alive = GetWeakPtr();
  try {
    step();
  }
  DATABINDING_PASS_CANCELLATION catch (...) {
    if (alive) ReportFailure(name);
    if (alive && !IsDelivering() && HasFailure()) AskForPass();
  }
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DisableEvent(const VtrString& name) {
  if (++disabledEvents[name] == 1) TellOfDisabling(name);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::TellOfDisabling(const VtrString& name) {
  if (disablingObservers.Core() == nullptr) return;
  const VtrString kept = name;
  Guard(kept, [&] { disablingObservers.CallAll(kept); });
}

template <class Update, class Threading>
Subscription EventBroadcaster<Update, Threading>::ObserveDisabling(
    const RepeatingCallback<void(const VtrString& name)>& callback) {
  static_cast<void>(GetWeakPtr());  // so that telling needs no memory
  return disablingObservers.Add(callback);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::EnableAllEvents(bool fireHeldEvent) {
  const auto alive = GetWeakPtr();
  FirstFailure failed;  // events of an application's own kinds may throw
  VisitInOrder(knownEvents, [&](const VtrString& name, const auto* /*known*/) {
    failed.Try([&] { EnableEvent(name, fireHeldEvent); });
    return alive.IsValid();
  });
  failed.Rethrow();
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DisableAllEvents() {
  // Counted in a copy: if memory runs out on the way, no name is disabled rather than some.
  const auto alive = GetWeakPtr();
  auto disabled = disabledEvents;
  std::vector<VtrString> changed;
  for (const auto& [name, known] : knownEvents) {
    if (++disabled[name] == 1) changed.push_back(name);
  }
  disabledEvents.swap(disabled);
  for (const VtrString& name : changed) {
    if (alive) TellOfDisabling(name);
  }
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
  // Extracted before it ends, because its end may remove other callbacks.
  const auto removed = cleanupCallbacks.extract(owner);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DispatchPendingEvents() {
  if (!HasPendingEvents()) return;
  details::DeliveryScope scope(*this);
  auto batch = std::move(pendingEvents->spare);
  if (batch == nullptr) batch = std::make_unique<details::PendingEvents::Batch>();
  {
    const details::QueueLock guard(threadingPolicy);
    pendingEvents->Take(*batch);
    anyPending.store(false, std::memory_order_relaxed);
  }
  scope.Dispatch(*batch);
  batch->Clear();
  if (!scope.IsBroadcasterGone()) pendingEvents->spare = std::move(batch);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DispatchPendingEventsFor(
    std::chrono::nanoseconds budget) {
  using Clock = std::chrono::steady_clock;
  if (!HasPendingEvents()) return;
  const auto begin = Clock::now();
  details::DeliveryScope scope(*this);
  const auto pass = [this] {
    const details::QueueLock guard(threadingPolicy);
    return pendingEvents->BeginPass();
  }();
  const auto deliverNext = [&] {
    const EventPtr next = TakeFirst(pass);
    if (next != nullptr) scope.Dispatch(next);
    return next != nullptr;
  };
  while (deliverNext() && !scope.IsBroadcasterGone() && Clock::now() - begin < budget) {
  }
}

template <class Update, class Threading>
auto EventBroadcaster<Update, Threading>::TakeFirst(std::uint32_t pass) -> EventPtr {
  const details::QueueLock guard(threadingPolicy);
  EventPtr first = pendingEvents->TakeFirst(pass);
  anyPending.store(!pendingEvents->IsEmpty(), std::memory_order_relaxed);
  return first;
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::SendEvent(const EventPtr& event) {
  if (event == nullptr) return;
  const auto alive = GetWeakPtr();
  const bool hadFailure = HasFailure();
  details::DeliveryScope(*this).Dispatch(event);
  if (alive && !IsDelivering() && !hadFailure && HasFailure()) AskForPass();
}

/// Runs the UpdateUI callback, so that a pass comes and shows the failure that is kept. The failure
/// stays kept when the callback throws.
template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::AskForPass() {
  FirstFailure dropped;
  dropped.Try([this] { updatePolicy.PostUpdate(); });
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::NotifyListenersOnIdleImpl(const VtrString& name,
                                                                    bool replaceLast,
                                                                    EventPtr event) {
  if (event == nullptr) return;
  const std::uint64_t hash = replaceLast ? details::PendingEvents::Hash(name, *event) : 0;
  EventPtr replaced;
  {
    const details::QueueLock guard(threadingPolicy);
    if (replaceLast) {
      replaced = pendingEvents->Replace(name, hash, std::move(event));
    } else {
      pendingEvents->Append(name, std::move(event));
    }
    anyPending.store(true, std::memory_order_release);
  }
  if (replaced != nullptr && !isPassOwed.load(std::memory_order_relaxed)) return;
  try {
    updatePolicy.PostUpdate();
  } catch (...) {
    isPassOwed.store(true, std::memory_order_relaxed);
    throw;
  }
  if (isPassOwed.load(std::memory_order_relaxed)) isPassOwed.store(false);
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::HasPendingEvents() const noexcept {
  return anyPending.load(std::memory_order_acquire);
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::HasUndeliveredEvents() const noexcept {
  return HasPendingEvents() || details::DeliveryScope::IsAnyToCome(delivery);
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DropEvents(const VtrString& name) {
  Drop([&name](const VtrString& dropped, const PendingEventBase&) { return dropped == name; });
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::DropEventsFrom(const void* origin) {
  if (origin == nullptr) return;
  Drop([origin](const VtrString&, const PendingEventBase& event) {
    return event.Origin() == origin;
  });
}

/// Takes out all events that match before it ends the first of them, because the destructor of an
/// event's argument may drop or deliver others, or release this broadcaster.
template <class Update, class Threading>
template <class Matches>
void EventBroadcaster<Update, Threading>::Drop(Matches matches) {
  std::vector<EventPtr> dropped;
  for (auto held = heldEvents.begin(); held != heldEvents.end();) {
    const bool isDropped = matches(held->first, *held->second);
    if (isDropped) dropped.push_back(held->second);
    held = isDropped ? heldEvents.erase(held) : std::next(held);
  }
  details::DeliveryScope::Drop(delivery, matches, dropped);
  const details::QueueLock guard(threadingPolicy);
  pendingEvents->Drop(matches, dropped);
  anyPending = !pendingEvents->IsEmpty();
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::SetErrorHandler(ErrorHandler handler) {
  errorHandler = std::move(handler);
}

template <class Update, class Threading>
EventFailure EventBroadcaster<Update, Threading>::TakeFailure() {
  return std::exchange(failure, {});
}

/// The handler may itself throw, and it may release the broadcaster.
template <class Update, class Threading>
DATABINDING_CATCHES_CANCELLATION void EventBroadcaster<Update, Threading>::ReportFailure(
    const VtrString& name) {
  EventFailure thrown{name, std::current_exception(), 0};
  const details::DeliveryScope scope(*this);
  if (const ErrorHandler handler = errorHandler; !handler.IsCancelled()) {
    try {
      return handler(name, thrown.exception);
    }
    DATABINDING_PASS_CANCELLATION catch (...) {
      thrown.exception = std::current_exception();
      thrown.others = 1;
    }
  }
  if (scope.IsBroadcasterGone()) return;
  if (failure) {
    failure.others += 1 + thrown.others;
  } else {
    failure = std::move(thrown);
  }
}

template <class Update, class Threading>
CallbackListBase* EventBroadcaster<Update, Threading>::FindListeners(
    const details::EventName& name) const noexcept {
  return name.Number() < listeners.size() ? listeners[name.Number()].get() : nullptr;
}

template <class Update, class Threading>
CallbackListBase& EventBroadcaster<Update, Threading>::Listeners(const details::EventName& name) {
  const details::OneThreadVisit visit(pendingEvents->delivering);
  CallbackListBase* const found = FindListeners(name);
  return found == nullptr ? AddListeners(name) : *found;
}

template <class Update, class Threading>
CallbackListBase& EventBroadcaster<Update, Threading>::AddListeners(
    const details::EventName& name) {
  if (listeners.size() <= name.Number()) listeners.resize(name.Number() + 1);
  auto made = std::make_unique<CallbackListBase>();
  knownEvents[name.Text()] = made.get();
  listeners[name.Number()] = std::move(made);
  return *listeners[name.Number()];
}

template <class Update, class Threading>
bool EventBroadcaster<Update, Threading>::PendingEventBase::HoldIfDisabled(
    EventBroadcaster& broadcaster, const VtrString& name, EventPtr event) {
  broadcaster.knownEvents.try_emplace(name, nullptr);
  if (!broadcaster.IsDisable(name)) return false;
  if (event != nullptr) broadcaster.HoldEvent(name, std::move(event));
  return true;
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::PendingEventBase::PreNotify(
    EventBroadcaster& broadcaster) {
  broadcaster.updatePolicy.PreNotify();
}

template <class Update, class Threading>
void EventBroadcaster<Update, Threading>::PendingEventBase::ReportFailure(
    EventBroadcaster& broadcaster, const VtrString& name) {
  broadcaster.ReportFailure(name);
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

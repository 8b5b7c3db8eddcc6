// SPDX-License-Identifier: Apache-2.0
/// An EventBroadcaster is the engine behind application-wide named events. It has a queue that any
/// thread fills, and that one thread, the delivering thread, empties on the application's idle
/// pass.
///
/// A name can be disabled. The newest event of a disabled name is held until the name is enabled
/// again, and older ones are lost. Events that are still queued or held when the broadcaster ends
/// are dropped.
///
/// Any thread may raise events (QueueEvent, AppEvent). All other operations belong to the
/// delivering thread, which holds no lock while it calls listeners. A listener may raise, disable
/// and enable events, subscribe, cancel, dispatch again (as a modal loop does) and even release the
/// broadcaster.
///
/// Applications use IAppEventBroadcaster, which is the broadcaster of the process, and raise events
/// by AppEvent. docs/how-it-works.md follows an event through this class.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/ThreadingPolicy.h"
#include "DataBinding/appevents/UpdatePolicy.h"
#include "DataBinding/foundation/Any.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

namespace details {
class DeliveryScope;
class EventName;
class PendingEvents;
}  // namespace details

/// The exceptions of listeners and hooks since the last TakeFailure.
struct EventFailure {
  /// The event during whose delivery the first exception was thrown.
  VtrString eventName;
  /// The first exception; null for none.
  std::exception_ptr exception;
  /// How many exceptions followed the first one; they are dropped.
  std::size_t others = 0;

  /// True when something was thrown.
  explicit operator bool() const noexcept { return exception != nullptr; }
};

#if defined(__GNUC__)  // its destructor is deliberately not virtual
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The library has one instantiation, with the policies of namespace AEB. Classes may derive from
/// it, but a derived object is not deleted through a pointer to this class.
template <class UpdatePolicyType, class ThreadingPolicyType>
class DATABINDING_API EventBroadcaster {
 public:
  /// An event in the queue, owned through std::shared_ptr. AppEvent makes such events; an
  /// application may derive kinds of its own and queue them with QueueEvent. When their Dispatch
  /// throws, DispatchPendingEvents drops the rest of the batch, and DispatchPendingEventsFor leaves
  /// the rest queued.
  class DATABINDING_API PendingEventBase {
   public:
    PendingEventBase(const PendingEventBase&) = delete;
    PendingEventBase& operator=(const PendingEventBase&) = delete;
    virtual ~PendingEventBase() = default;
    /// Delivers the event to its listeners. Runs on the delivering thread.
    virtual void Dispatch(EventBroadcaster& broadcaster) = 0;
    /// The key by which DropEventsFrom finds the event, most often ThisModule. Null for none.
    [[nodiscard]] const void* Origin() const noexcept { return origin; }
    /// The record of its name that an event of an AppEvent has. Null for an application's own kind.
    [[nodiscard]] const details::EventName* KnownName() const noexcept { return knownName; }

   protected:
    /// Makes an event of the application's own kind. DropEventsFrom finds it by the origin, and
    /// passes it over if that is null.
    explicit PendingEventBase(const void* raisedFrom = nullptr) noexcept : origin(raisedFrom) {}
    /// Makes an event whose name has a record.
    PendingEventBase(const void* raisedFrom, const details::EventName& name) noexcept
        : origin(raisedFrom), knownName(&name) {}
    /// Dispatch calls this first: it subscribes the listeners that wait in WAppEventRegistrar.
    static void PreNotify(EventBroadcaster& broadcaster);
    /// Dispatch calls this before it calls listeners. If the name is disabled, it holds the event
    /// in the place of an older one, and returns true. Makes the name known (see DisableAllEvents).
    /// A null event is not held.
    [[nodiscard]] static bool HoldIfDisabled(EventBroadcaster& broadcaster, const VtrString& name,
                                             std::shared_ptr<PendingEventBase> event);
    /// Dispatch asks this after the listeners, since the arguments need to be boxed only when there
    /// are hooks: `if (HasHooks(b)) NotifyHooks(b, name, {...});`
    [[nodiscard]] static bool HasHooks(const EventBroadcaster& broadcaster);
    /// Runs the hooks. An exception of a hook is treated like a listener's.
    static void NotifyHooks(EventBroadcaster& broadcaster, const VtrString& name,
                            const std::vector<Any>& args);
    /// A catch block of Dispatch calls this, which treats the exception like a listener's.
    static void ReportFailure(EventBroadcaster& broadcaster, const VtrString& name);

   private:
    const void* origin;
    const details::EventName* knownName = nullptr;
  };
  /// The queue, the held events and a batch under delivery share an event.
  using EventPtr = std::shared_ptr<PendingEventBase>;
  /// Is given the event's name and the exception, on the delivering thread.
  using ErrorHandler = RepeatingCallback<void(const VtrString&, const std::exception_ptr&)>;

  EventBroadcaster();
  EventBroadcaster(const EventBroadcaster&) = delete;
  EventBroadcaster& operator=(const EventBroadcaster&) = delete;

 protected:
  /// True when there are hooks, which see every event.
  [[nodiscard]] virtual bool AnyEventHooksRegistered() const;
  /// Is called when an event with these arguments was delivered, if AnyEventHooksRegistered.
  virtual void OnEventDispatched(VtrString name, const std::vector<Any>& args);

 public:
  /// Runs the cleanup callbacks, then drops everything. Deliberately not virtual: a derived
  /// broadcaster is deleted through the derived type.
  ~EventBroadcaster();

  /// Undoes one DisableEvent. When it undoes the last one, it delivers the held event at once, or
  /// drops it if fireHeldEvent is false. Does nothing for a name that is not disabled, or that only
  /// EventHolds disable.
  void EnableEvent(const VtrString& name, bool fireHeldEvent);
  /// Holds the name's events back from now on, also those that are queued already. Calls count: as
  /// many EnableEvents undo them.
  void DisableEvent(const VtrString& name);
  /// Calls EnableEvent for each known name, in ascending order. When a held event of the
  /// application's own kind throws, the other names are enabled all the same, and then the first
  /// exception comes out.
  void EnableAllEvents(bool fireHeldEvent);
  /// Calls DisableEvent for each known name, in ascending order. A name is known once a listener
  /// has subscribed to it or an event of it was dispatched. Listeners that still wait in the
  /// registrar have not made their names known; call WAppEventRegistrar::RegisterAppEvents first to
  /// reach them.
  void DisableAllEvents();
  /// True while the name is disabled, by DisableEvent or by an EventHold.
  [[nodiscard]] bool IsDisable(const VtrString& name);
  /// Calls the callback with the name when one is disabled that was not, and when it is enabled
  /// again, before its held event is delivered, until the subscription ends. On the delivering
  /// thread. The callback may do anything, also release the broadcaster, drop the held event, or
  /// disable the name again, by which the event stays held. What it throws is treated like a
  /// listener's, when all were called.
  Subscription ObserveDisabling(const RepeatingCallback<void(const VtrString& name)>& callback);
  /// True when the name is disabled and an event is held for it.
  [[nodiscard]] bool AnyPendingDisableEvents(const VtrString& name) const;
  /// Has the broadcaster run the callback when it ends; an exception of the callback is dropped. An
  /// owner has one callback: a second one for the same owner is dropped without being run.
  void AddCleanupCallback(void* owner, OneShotCallback<void()> callback);
  /// Drops the owner's callback without running it.
  void RemoveCleanupCallback(void* owner);
  /// Delivers the events that are queued now, as one batch. Events that are raised meanwhile wait
  /// for the next call. A call from inside a listener delivers what was raised since, and then the
  /// outer call goes on with the rest of its batch.
  void DispatchPendingEvents();
  /// Delivers events one after the other, at least one, until the budget is used up, and looks at
  /// the clock after each. The others stay queued, and the caller is to come back for them. Events
  /// that are raised meanwhile wait for the next call. Events for which the budget
  /// did not suffice count as queued: RaiseLatest replaces them, a call from inside a listener
  /// delivers them, and an exception out of an event of the application's own kind leaves them for
  /// later.
  void DispatchPendingEventsFor(std::chrono::nanoseconds budget);

  /// Queues an event of the caller's own kind. Any thread. With `replaceLast` the event goes to the
  /// end of the queue and replaces the newest queued event of its name, which ends on this thread.
  /// Ignores null. An exception of the UpdateUI callback comes out of here, but the event is
  /// queued, and the next event runs the callback again.
  void QueueEvent(const VtrString& name, EventPtr event, bool replaceLast = false) {
    NotifyListenersOnIdleImpl(name, replaceLast, std::move(event));
  }
  /// Delivers an event now, on this thread. What its Dispatch throws comes out of here. Ignores
  /// null.
  void SendEvent(const EventPtr& event);
  /// True while events are queued. Events that DispatchPendingEvents has taken out as its batch do
  /// not count, even before they are delivered. Any thread.
  [[nodiscard]] bool HasPendingEvents() const noexcept;
  /// True while events are queued or still to come in a batch under delivery. Events that are being
  /// delivered or held do not count.
  [[nodiscard]] bool HasUndeliveredEvents() const noexcept;
  /// Drops the events of a name that are queued, held, or still to come in a batch under delivery.
  /// The destructors of their arguments may drop further events and release the broadcaster. Takes
  /// time in proportion to the queue.
  void DropEvents(const VtrString& name);
  /// Drops the events of an origin, whatever their names, for example those of a plug-in that is
  /// about to be unloaded. As DropEvents otherwise. Does nothing for null.
  void DropEventsFrom(const void* origin);
  /// Has the handler called with each exception of a listener or hook. Without a handler (null, or
  /// bound to an object that has gone since) the first exception is kept for TakeFailure. If it was
  /// thrown outside a dispatch, an idle pass is asked for, so that it comes to light. When the
  /// handler itself throws, its exception is kept, and the one that it was given counts among the
  /// others.
  void SetErrorHandler(ErrorHandler handler);
  /// True when TakeFailure would give an exception.
  [[nodiscard]] bool HasFailure() const noexcept { return failure.exception != nullptr; }
  /// Gives and forgets the exceptions that were kept since the last call.
  [[nodiscard]] EventFailure TakeFailure();
  /// True while an event is dispatched, on the delivering thread.
  [[nodiscard]] bool IsDelivering() const noexcept { return delivery != nullptr; }
  /// Gives a pointer that tells whether this broadcaster, and not a later one, is still there.
  [[nodiscard]] WeakPtr<EventBroadcaster> GetWeakPtr() const { return weakFactory.GetWeakPtr(); }

  /// EventHold calls this when it begins to disable a name, and EndHold when it ends.
  void BeginHold(const VtrString& name);
  /// Undoes one BeginHold as EnableEvent undoes DisableEvent. What a held event throws goes to the
  /// error handler.
  void EndHold(const VtrString& name, bool fireHeldEvent) noexcept;
  /// The listeners of a typed event, to which AppEvent adds. Makes the name known.
  [[nodiscard]] CallbackListBase& Listeners(const details::EventName& name);
  /// The same, but null, and the name stays unknown, if nobody has asked for the listeners before.
  [[nodiscard]] CallbackListBase* FindListeners(const details::EventName& name) const noexcept;

 protected:
  /// Gives the exception that is being handled to the error handler, or keeps it.
  void ReportFailure(const VtrString& name);

 private:
  friend class details::DeliveryScope;

  void NotifyListenersOnIdleImpl(const VtrString& name, bool replaceLast, EventPtr event);
  [[nodiscard]] EventPtr TakeFirst(std::uint32_t pass);
  template <class Matches>
  void Drop(Matches matches);
  void AskForPass();
  void HoldEvent(const VtrString& name, EventPtr event);
  void UndoDisable(const VtrString& name, bool fireHeldEvent);
  void TellOfDisabling(const VtrString& name);
  template <class Step>
  void Guard(const VtrString& name, Step step);
  CallbackListBase& AddListeners(const details::EventName& name);

  std::map<VtrString, CallbackListBase*> knownEvents;
  std::unique_ptr<details::PendingEvents> pendingEvents;
  std::map<VtrString, std::int32_t> disabledEvents;
  CallbackList<VtrString> disablingObservers;
  std::map<VtrString, EventPtr> heldEvents;
  std::map<void*, OneShotCallback<void()>> cleanupCallbacks;
  ThreadingPolicyType threadingPolicy;
  UpdatePolicyType updatePolicy;
  std::atomic<bool> anyPending{false};
  /// True after the UpdateUI callback has thrown, until it runs to its end.
  std::atomic<bool> isPassOwed{false};
  /// How many of a name's disables belong to EventHolds, which EnableEvent leaves alone.
  std::map<VtrString, std::int32_t> holdCounts;
  /// The listeners of typed events, by the number of their names.
  std::vector<std::unique_ptr<CallbackListBase>> listeners;
  ErrorHandler errorHandler;
  EventFailure failure;
  details::DeliveryScope* delivery = nullptr;
  WeakPtrFactory<EventBroadcaster> weakFactory;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// The only instantiation that the library has; IAppEventBroadcaster derives from it.
using PolicyEventBroadcaster = EventBroadcaster<AEB::UpdatePolicy, AEB::ThreadingPolicy>;
/// The base of events of an application's own kinds.
using PendingEventBase = PolicyEventBroadcaster::PendingEventBase;

#if !defined(_WIN32)  // MinGW exports no inline member of a template that is declared extern
extern template class EventBroadcaster<AEB::UpdatePolicy, AEB::ThreadingPolicy>;
#endif

}  // namespace DataBinding

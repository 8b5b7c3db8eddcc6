// SPDX-License-Identifier: Apache-2.0
/// The engine behind application-wide named events: a queue that any thread fills and one thread,
/// the delivering thread, empties on the application's idle pass.
///
/// Events of a disabled name are held, the newest one a name, until it is enabled again. Raising
/// (QueueEvent, AppEvent) works on any thread; all else belongs to the delivering thread, and runs
/// there with no lock held. A listener may raise, disable and enable events, subscribe, cancel,
/// dispatch again (a modal loop) and even release the broadcaster. Events still queued or held when
/// the broadcaster ends are dropped.
///
/// Applications use IAppEventBroadcaster, the one of the process, and AppEvent to raise.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/ThreadingPolicy.h"
#include "DataBinding/appevents/UpdatePolicy.h"
#include "DataBinding/foundation/Any.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

namespace details {
class DeliveryScope;
class EventName;
class NamedEvent;
class PendingEvents;
struct EventChannel;
}  // namespace details

/// What listeners and hooks have thrown since somebody asked.
struct EventFailure {
  /// The event that the first one listened to.
  VtrString eventName;
  /// The first exception; null for none.
  std::exception_ptr exception;
  /// How many were thrown after it, which are dropped.
  std::size_t others = 0;

  /// True when something was thrown.
  explicit operator bool() const noexcept { return exception != nullptr; }
};

class EventHold;

#if defined(__GNUC__)  // its destructor is deliberately not virtual
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The library holds one instantiation, that with the policies of namespace AEB; it can be derived
/// from, and deleted only as what it is.
template <class UpdatePolicyType, class ThreadingPolicyType>
class DATABINDING_API EventBroadcaster {
 public:
  /// An event in the queue, owned through std::shared_ptr. AppEvent makes them; an application may
  /// queue kinds of its own with QueueEvent. What their Dispatch lets out abandons the batch;
  /// RunFor leaves the rest of it queued.
  class DATABINDING_API PendingEventBase {
   public:
    PendingEventBase(const PendingEventBase&) = delete;
    PendingEventBase& operator=(const PendingEventBase&) = delete;
    virtual ~PendingEventBase() = default;
    /// Delivers the event to its listeners. Runs on the delivering thread.
    virtual void Dispatch(EventBroadcaster& broadcaster) = 0;
    /// What DropOwner knows the event by; see ThisModule.
    [[nodiscard]] const void* Owner() const noexcept { return owner; }

   protected:
    /// Of an owner, or of nobody: DropOwner then passes it over.
    explicit PendingEventBase(const void* ownerKey = nullptr) noexcept : owner(ownerKey) {}
    /// For Dispatch, before all else: subscribes the listeners that wait for it.
    static void PreNotify(EventBroadcaster& broadcaster);
    /// For Dispatch: keeps the event, in place of an older one, if its name is disabled, and says
    /// whether it is. A name becomes known by this. Null is not kept.
    [[nodiscard]] static bool HoldIfDisabled(EventBroadcaster& broadcaster, const VtrString& name,
                                             std::shared_ptr<PendingEventBase> event);
    /// For Dispatch, after the listeners: lets the hooks see the event. The arguments are boxed
    /// only when there are hooks: `if (HasHooks(b)) NotifyHooks(b, name, {...});`
    [[nodiscard]] static bool HasHooks(const EventBroadcaster& broadcaster);
    /// Runs the hooks; what they throw is treated as a listener's exception.
    static void NotifyHooks(EventBroadcaster& broadcaster, const VtrString& name,
                            const std::vector<Any>& args);
    /// For a catch block of Dispatch: treats the exception as that of a listener.
    static void ReportFailure(EventBroadcaster& broadcaster, const VtrString& name);

   private:
    const void* owner;
  };
  /// The queue, the held events and a batch under delivery share an event.
  using EventPtr = std::shared_ptr<PendingEventBase>;
  /// Gets the event's name and the exception, on the delivering thread.
  using ErrorHandler = RepeatingCallback<void(const VtrString&, const std::exception_ptr&)>;

  EventBroadcaster();
  EventBroadcaster(const EventBroadcaster&) = delete;
  EventBroadcaster& operator=(const EventBroadcaster&) = delete;

 protected:
  /// True when somebody wants to see every event.
  [[nodiscard]] virtual bool AnyEventHooksRegistered() const;
  /// An event was delivered with these arguments.
  virtual void OnEventDispatched(VtrString name, const std::vector<Any>& args);

 public:
  /// Runs the cleanup callbacks, then drops everything. Deliberately not virtual: whoever owns a
  /// derived broadcaster deletes it as that.
  ~EventBroadcaster();

  /// Undoes one DisableEvent. When that was the last one, the event held meanwhile is delivered at
  /// once or dropped. Does nothing for a name that is not disabled, or by EventHolds only.
  void EnableEvent(const VtrString& name, bool fireHeldEvent);
  /// Holds the name's events back from now on, also those that are queued already. Counts.
  void DisableEvent(const VtrString& name);
  /// EnableEvent of each known name, in ascending order. All are enabled, also when held events of
  /// another kind throw: the first exception comes out when that is done.
  void EnableAllEvents(bool fireHeldEvent);
  /// DisableEvent of each known name, in ascending order. A name is known once it was subscribed to
  /// or an event of it was dispatched. The others are not reached, such as those of listeners that
  /// wait to be subscribed: call WAppEventRegistrar::RegisterAppEvents before.
  void DisableAllEvents();
  /// True while the name is disabled, by whomever.
  [[nodiscard]] bool IsDisable(const VtrString& name);
  /// True when the name is disabled and an event is held for it.
  [[nodiscard]] bool AnyPendingDisableEvents(const VtrString& name) const;
  /// Runs the callback when the broadcaster ends; what it throws then is dropped. A second one of
  /// the same owner is dropped, too.
  void AddCleanupCallback(void* owner, OneShotCallback<void()> callback);
  /// Drops the owner's callback without running it.
  void RemoveCleanupCallback(void* owner);
  /// Delivers what is queued so far. What is raised meanwhile waits for the next call; a call from
  /// inside a delivery delivers what was raised since, before the rest of the outer batch.
  void DispatchPendingEvents();
  /// Delivers one event after the other, at least one, until as much time has passed; the others
  /// stay queued, for the caller to come back to. As above, it delivers nothing that is raised
  /// meanwhile. What has not been reached counts as queued: RaiseLatest replaces it, a call from
  /// inside delivers it, and an exception out of an event of another kind leaves it for later.
  /// Looks at the clock after each event.
  void DispatchPendingEventsFor(std::chrono::nanoseconds budget);

  /// Queues an event of the caller's own kind. Any thread. With `replaceLast` it takes the place of
  /// the newest queued event of its name, which ends on this thread, at the end of the queue.
  /// Ignores null. What the UpdateUI callback throws comes out of here, with the event queued; the
  /// next event runs it again.
  void QueueEvent(const VtrString& name, EventPtr event, bool replaceLast = false);
  /// True while events are queued; false already while a batch with the last of them is under
  /// delivery. Any thread.
  [[nodiscard]] bool HasPendingEvents() const noexcept;
  /// True while events are queued or still to come in a batch under delivery. Those that are being
  /// delivered are not counted, nor those that are held.
  [[nodiscard]] bool HasUndeliveredEvents() const noexcept;
  /// Drops the name's events, or the owner's, that are queued, held, or still to come in a batch
  /// under delivery, for example those of a plug-in which is about to be unloaded. What they own
  /// may drop others while it ends, and may release the broadcaster. The whole queue is looked at.
  void DropEvents(const VtrString& name);
  /// The same for the events of an owner, whatever their names. None for null.
  void DropOwner(const void* owner);
  /// Takes what listeners and hooks throw. Without one (null, or bound to an object that has gone
  /// since) the first exception is kept for TakeFailure; outside a dispatch an idle pass is asked
  /// for, so that it comes to light. What the handler itself throws is kept in the place of what it
  /// was given, which counts as another.
  void SetErrorHandler(ErrorHandler handler);
  /// True when TakeFailure would give an exception.
  [[nodiscard]] bool HasFailure() const noexcept { return failure.exception != nullptr; }
  /// What was thrown since the last call.
  [[nodiscard]] EventFailure TakeFailure();
  /// True while an event is dispatched, on the delivering thread.
  [[nodiscard]] bool IsDelivering() const noexcept { return delivery != nullptr; }
  /// Tells whether this broadcaster, and not a later one, is still there.
  [[nodiscard]] WeakPtr<EventBroadcaster> GetWeakPtr() const { return weakFactory.GetWeakPtr(); }

 protected:
  /// Passes the exception that is being handled to the error handler, or keeps it.
  void ReportFailure(const VtrString& name);

 private:
  friend class details::DeliveryScope;
  friend class details::NamedEvent;
  friend class EventHold;

  void NotifyListenersOnIdleImpl(const VtrString& name, bool replaceLast, EventPtr event);
  void QueueNamed(const details::EventName& name, bool replaceLast, EventPtr&& event);
  template <class Name>
  void Append(const Name& name, bool replaceLast, EventPtr&& event);
  [[nodiscard]] EventPtr TakeFirst(std::uint32_t pass);
  template <class Matches>
  void Drop(Matches matches);
  void Deliver(const EventPtr& event);
  void AskForPass();
  void HoldEvent(const VtrString& name, EventPtr event);
  void BeginHold(const VtrString& name);
  void EndHold(const VtrString& name, bool fireHeldEvent);
  void UndoDisable(const VtrString& name, bool fireHeldEvent);
  [[nodiscard]] details::EventChannel& Channel(const details::EventName& name);

  std::map<VtrString, details::EventChannel*> knownEvents;
  std::unique_ptr<details::PendingEvents> pendingEvents;
  std::map<VtrString, std::int32_t> disabledEvents;
  std::map<VtrString, EventPtr> heldEvents;
  std::map<void*, OneShotCallback<void()>> cleanupCallbacks;
  ThreadingPolicyType threadingPolicy;
  UpdatePolicyType updatePolicy;
  std::atomic<bool> anyPending{false};
  /// Set when the UpdateUI callback could not be run to its end.
  std::atomic<bool> isPassOwed{false};
  /// How many of a name's disables belong to EventHolds, which EnableEvent leaves alone.
  std::map<VtrString, std::int32_t> holdCounts;
  /// The listeners of typed events, by the number of their names.
  std::vector<std::unique_ptr<details::EventChannel>> channels;
  ErrorHandler errorHandler;
  EventFailure failure;
  details::DeliveryScope* delivery = nullptr;
  WeakPtrFactory<EventBroadcaster> weakFactory;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// The one broadcaster that there is code for; IAppEventBroadcaster is it.
using PolicyEventBroadcaster = EventBroadcaster<AEB::UpdatePolicy, AEB::ThreadingPolicy>;
/// What applications derive events of their own kinds from.
using PendingEventBase = PolicyEventBroadcaster::PendingEventBase;

#if !defined(_WIN32)  // there MinGW would export no inline member of what is declared extern
extern template class EventBroadcaster<AEB::UpdatePolicy, AEB::ThreadingPolicy>;
#endif

}  // namespace DataBinding

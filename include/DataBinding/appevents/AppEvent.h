// SPDX-License-Identifier: Apache-2.0
/// An AppEvent is a named application event with its signature. It is declared once in a header and
/// used by every module that includes this header.
///
/// Making an AppEvent of a literal costs nothing and cannot fail, so it may stand at namespace
/// scope. A name has one signature in the whole process, that of its first use: any operation that
/// uses it with another one throws std::logic_error, which names both signatures.
///
/// Any thread may call Raise and RaiseLatest; Send and Subscribe belong to the delivering thread.
/// Listeners take the arguments as constant references, which live until the delivery is over. A
/// listener may raise, send, subscribe and cancel (see CallbackList.h).
///
///   inline constinit const AppEvent<VtrString, int> processStarted{L"ProcessStarted"};
///   Subscription log = processStarted.Subscribe([](const VtrString& name, int id) { ... });
///   processStarted.Raise(L"make", 4711);
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/appevents/details/EventMemory.h"
#include "DataBinding/appevents/details/EventName.h"
#include "DataBinding/appevents/details/NamedEvent.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/details/CallOnce.h"

namespace DataBinding {

/// Gives an address that stands for the module (executable, library or plug-in) whose code calls
/// it. The module is the origin of the events that it raises: see DropEventsFrom.
[[nodiscard]] DATABINDING_MODULE_LOCAL inline const void* ThisModule() noexcept {
  static constexpr char here = 0;
  return &here;
}

namespace details {
/// True for types that only refer to something, which may be gone when the event is delivered.
template <class T>
inline constexpr bool isBorrowed = std::same_as<T, VtrStringView>;
template <class C, class Traits>
inline constexpr bool isBorrowed<std::basic_string_view<C, Traits>> = true;
template <class T, std::size_t Extent>
inline constexpr bool isBorrowed<std::span<T, Extent>> = true;
template <class T>
inline constexpr bool isBorrowed<std::reference_wrapper<T>> = true;
template <>
inline constexpr bool isBorrowed<const char*> = true;
template <>
inline constexpr bool isBorrowed<const wchar_t*> = true;
}  // namespace details

template <class... Args>
class AppEvent {
  static_assert((std::copyable<Args> && ...), "arguments are copied into the queue and for hooks");
  static_assert((!details::isBorrowed<Args> && ...),
                "a view, a reference or a plain text may be gone when the queue is delivered");

 public:
  /// The callback of a listener, which takes each argument by constant reference.
  using Callback = RepeatingCallback<void(const Args&...)>;

  /// The text, most often a literal, must live as long as the event and its copies.
  explicit constexpr AppEvent(const wchar_t* eventName) noexcept : text(eventName) {}
  /// For a name that is made up at run time. Its text is kept until the process ends.
  explicit AppEvent(const VtrString& eventName) : text(details::EventName::Intern(eventName)) {}
  /// A copy names the same event. It refers to the same text, which is not copied.
  ///@{
  AppEvent(const AppEvent& other) noexcept
      : text(other.text), known(other.known.load(std::memory_order_acquire)) {}
  AppEvent& operator=(const AppEvent& other) noexcept {
    if (this == &other) return *this;
    text = other.text;
    known.store(other.known.load(std::memory_order_acquire), std::memory_order_release);
    return *this;
  }
  ///@}
  ~AppEvent() = default;

  /// Queues an event for the next idle pass. Any thread. When `wake` (see IdlePass) throws because
  /// it cannot wake the loop, Raise lets the exception out, and the event is queued all the same.
  DATABINDING_MODULE_LOCAL void Raise(Args... args) const {
    const VtrString& name = Name();
    IAppEventBroadcaster::GetInstance().QueueEvent(name, Make(std::move(args)...));
  }
  /// Queues an event that takes the place of the newest queued event of this name, for readings of
  /// which only the latest counts. The arguments of the replaced event end on this thread, before
  /// the call returns. As Raise otherwise.
  DATABINDING_MODULE_LOCAL void RaiseLatest(Args... args) const {
    const VtrString& name = Name();
    IAppEventBroadcaster::GetInstance().QueueEvent(name, Make(std::move(args)...), true);
  }
  /// Delivers an event now, on this thread, by the rules of a queued one: the event is held if its
  /// name is disabled, hooks see it, and exceptions of listeners go to the error handler.
  DATABINDING_MODULE_LOCAL void Send(Args... args) const {
    const auto event = Make(std::move(args)...);
    IAppEventBroadcaster::GetInstance().SendEvent(event);
  }
  /// Calls the callback for each event of this name until the subscription is cancelled, which any
  /// thread may do, or the broadcaster ends. Cancelling on another thread does not wait for a call
  /// that is under way. A null callback gives an inert subscription.
  Subscription Subscribe(const Callback& callback) const {
    return Subscribe(IAppEventBroadcaster::GetInstance(), callback);
  }
  /// Subscribes at the given broadcaster instead of that of the process.
  Subscription Subscribe(IAppEventBroadcaster& broadcaster, const Callback& callback) const {
    return broadcaster.Listeners(Known()).Add(callback.GetMemento());
  }
  /// Calls the callback for one event only: the subscription ends when the callback has returned or
  /// thrown. A callback that sends the event itself is not called again. The callback may own its
  /// Subscription, by which it can be ended earlier. A null callback gives an inert subscription.
  Subscription SubscribeOnce(OneShotCallback<void(const Args&...)> callback) const {
    if (!callback) return {};
    return details::CallOnce(std::move(callback),
                             [this](const Callback& once) { return Subscribe(once); });
  }
  /// True when a listener would hear an event that is sent now. Listeners that wait in the
  /// registrar are subscribed first, and an exception of their InitEventMap comes out of here.
  /// Hooks do not count, nor do callbacks that are paused or bound to objects that have gone.
  /// Callbacks of On and SubscribeOnce count while they are subscribed, whatever they are bound to,
  /// and listeners to a disabled name count, too. For the delivering thread.
  [[nodiscard]] bool HasListeners() const { return details::NamedEvent::HasListeners(Known()); }
  /// The name, which is kept until the process ends. Asking for it is a use of the name and fixes
  /// the signature: an application that asks all events at its start finds a name with two
  /// signatures there, and not later on some thread.
  [[nodiscard]] const VtrString& Name() const { return Known().Text(); }

 private:
  DATABINDING_MODULE_LOCAL PolicyEventBroadcaster::EventPtr Make(Args&&... args) const {
    using Event = details::TypedEvent<Args...>;
    return std::allocate_shared<Event>(details::EventAllocator<Event>(), Known(), ThisModule(),
                                       std::move(args)...);
  }
  [[nodiscard]] const details::EventName& Known() const {
    const auto* found = known.load(std::memory_order_acquire);
    if (found == nullptr) {
      found = &details::EventName::Find(text, typeid(void(Args...)));
      known.store(found, std::memory_order_release);
    }
    return *found;
  }

  const wchar_t* text;
  mutable std::atomic<const details::EventName*> known{nullptr};
};

}  // namespace DataBinding

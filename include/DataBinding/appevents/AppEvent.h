// SPDX-License-Identifier: Apache-2.0
/// A named application event with its signature: a value, declared once in a header and used by
/// every module that includes it.
///
/// Making one costs nothing and cannot fail, so it may stand at namespace scope. The name fixes the
/// signature for the whole process: its first use with another one, on whatever operation, throws
/// std::logic_error naming both. Raise and RaiseLatest work on any thread; Send and Subscribe
/// belong to the delivering thread. Listeners take the arguments as constant references, which live
/// until the delivery is over; they may raise, send, subscribe and cancel (see CallbackList.h).
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

/// Stands for the module (executable, library, plug-in) whose code calls it: the owner of the
/// events that this module raises. See PolicyEventBroadcaster::DropOwner.
[[nodiscard]] DATABINDING_MODULE_LOCAL inline const void* ThisModule() noexcept {
  static constexpr char here = 0;
  return &here;
}

namespace details {
/// Arguments that refer to what somebody else owns: it may be gone when the event is delivered.
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
  /// What subscribes: takes each argument by constant reference.
  using Callback = RepeatingCallback<void(const Args&...)>;

  /// The text, most often a literal, must stay as long as the event and its copies.
  explicit constexpr AppEvent(const wchar_t* eventName) noexcept : text(eventName) {}
  /// For a name that is made up at run time. Its text is kept until the process ends.
  explicit AppEvent(const VtrString& eventName) : text(details::EventName::Intern(eventName)) {}
  /// Copies name the same event and its text, which is not copied.
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

  /// Queues an event for the next idle pass. Any thread. When the loop cannot be woken, what `wake`
  /// throws comes out of here, with the event queued.
  DATABINDING_MODULE_LOCAL void Raise(Args... args) const {
    details::NamedEvent::Queue(Known(), Make(std::move(args)...), false);
  }
  /// The same, in place of the newest queued event of this name: only the latest one counts. The
  /// arguments of the former one end on this thread, before the call returns.
  DATABINDING_MODULE_LOCAL void RaiseLatest(Args... args) const {
    details::NamedEvent::Queue(Known(), Make(std::move(args)...), true);
  }
  /// Delivers an event now, on this thread, by the rules of a queued one: it is held while the name
  /// is disabled, hooks see it, and what listeners throw goes to the error handler.
  DATABINDING_MODULE_LOCAL void Send(Args... args) const {
    details::NamedEvent::Send(Make(std::move(args)...));
  }
  /// Calls the callback for each event of this name until the subscription is cancelled, which any
  /// thread may do, or the broadcaster ends. Cancelling on another thread does not wait for a call
  /// that is under way. A null callback gives an inert subscription.
  Subscription Subscribe(const Callback& callback) const {
    return Subscribe(IAppEventBroadcaster::GetInstance(), callback);
  }
  /// The same at a broadcaster in hand.
  Subscription Subscribe(IAppEventBroadcaster& broadcaster, const Callback& callback) const {
    return details::NamedEvent::Subscribe(broadcaster, Known(), callback.GetMemento());
  }
  /// Calls the callback for one event only: the subscription ends when it has returned or thrown.
  /// It is called at most once also where an event is sent inside it. It may own its Subscription,
  /// by which it can be ended before. A null callback gives an inert subscription.
  Subscription SubscribeOnce(OneShotCallback<void(const Args&...)> callback) const {
    if (!callback) return {};
    return details::CallOnce(std::move(callback),
                             [this](const Callback& once) { return Subscribe(once); });
  }
  /// True when an event that is sent now would be heard. Listeners that wait are subscribed first;
  /// what their InitEventMap throws comes out. Hooks do not count, nor do callbacks that are paused
  /// or bound to objects that have gone. What On and SubscribeOnce were given counts while it is
  /// subscribed, and listeners to a disabled name do, too. For the delivering thread.
  [[nodiscard]] bool HasListeners() const { return details::NamedEvent::HasListeners(Known()); }
  /// The text, kept until the process ends. Fixes the signature: asking the names of all events at
  /// the start finds a name that is used with two before a thread comes across it.
  [[nodiscard]] const VtrString& Name() const { return Known().Text(); }

 private:
  DATABINDING_MODULE_LOCAL details::NamedEvent::Ptr Make(Args&&... args) const {
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

// SPDX-License-Identifier: Apache-2.0
/// The base of objects that listen to application events.
///
/// A subclass overrides InitEventMap and says there with On which events it wants. The library
/// makes subscriptions of this map before it delivers the next event, and ends them when the
/// listener is deactivated or ends. After WAppEventRegistrar::UnregisterAppEvents, InitEventMap
/// runs again.
///
/// Listeners belong to the delivering thread, and may end in a callback. If members of a listener
/// send events while they are made or end, activate the listener last and deactivate it first;
/// otherwise its methods would run when the members are not there.
///
///   void View::InitEventMap() {
///     On(processStarted, &View::AddRow);
///     AppEventListener::InitEventMap();
///   }
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/appevents/AppEventMapEntry.h"
#include "DataBinding/appevents/IAppEventListener.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API AppEventListener : public IAppEventListener,
                                         public SupportsWeakPtr<AppEventListener> {
 public:
  /// Activates the listener if asked to. A listener that is not activated makes neither the
  /// registrar nor the broadcaster.
  explicit AppEventListener(bool activate = true);
  ~AppEventListener() override;

  /// Notes that the map is initialised, see IsEventMapInitialised. Overrides call it last.
  void InitEventMap() override;
  /// Subscribes to the events of the map. Calling it twice subscribes twice.
  void RegisterAppEventListeners() override;
  /// Ends all subscriptions. Does not make a broadcaster if there is none.
  void UnregisterAppEventListeners() override;

  /// Counts one activation; the registrar knows the listener while the count is above 0. The count
  /// may deliberately fall below 0: one Deactivate too many is made up for by the next Activate.
  void ActivateAppEventListeners();
  /// Undoes one activation. Undoing the last one removes the listener from the registrar and ends
  /// its subscriptions.
  void DeactivateAppEventListeners();
  /// True when the map has an entry of exactly that name.
  [[nodiscard]] bool HasListener(VtrStringView name) const;

 protected:
  /// Adds an entry to the map: while this listener lives, the event calls the method, whose
  /// parameters must accept the event's arguments. Does nothing if the map has the event with this
  /// method already. Throws std::logic_error if this object is not of the method's class.
  template <class... Args, class Function, class Listener>
  requires std::is_function_v<Function>
  void On(const AppEvent<Args...>& event, Function Listener::*method) {
    static_assert(std::is_invocable_v<decltype(method), Listener&, const Args&...>,
                  "the method does not take the event's arguments");
    // A cast that is checked, since the method may be of a class beside this one, or of another
    // object's class.
    auto* const self = dynamic_cast<Listener*>(this);
    if (self == nullptr) throw std::logic_error("an event is mapped to another object's method");
    using Entry = MethodEntry<Function Listener::*, Args...>;
    // Classes derive from AppEventMapEntry as well, so the map says only by its types which of its
    // entries are of methods.
    const auto isSame = [&](const std::unique_ptr<AppEventMapEntry>& entry) {
      const auto* const known = dynamic_cast<const Entry*>(entry.get());
      return known != nullptr && known->Is(event.Name(), method);
    };
    // Not std::ranges, whose objects would keep a plug-in from being unloaded.
    if (std::any_of(eventMap.begin(), eventMap.end(), isSame)) return;
    eventMap.push_back(std::make_unique<Entry>(
        event, method, [alive = AsWeakPtr(), self, method](const Args&... args) {
          if (alive) (self->*method)(args...);
        }));
  }
  /// Adds an entry for a callable, which the map owns. Each call adds an entry, since callables
  /// cannot be compared; so ask IsEventMapInitialised first. A class from which others derive
  /// should map methods, since InitEventMap may run once more for the class that derives from it.
  template <class... Args>
  void On(const AppEvent<Args...>& event,
          const std::type_identity_t<RepeatingCallback<void(const Args&...)>>& callback) {
    eventMap.push_back(std::make_unique<CallbackEntry<Args...>>(
        event, [alive = AsWeakPtr(), callback](const Args&... args) {
          if (alive) callback(args...);
        }));
  }
  /// True once InitEventMap has run to its end. A run while only a base class of this object was
  /// made, because a member sent an event then, does not count.
  [[nodiscard]] bool IsEventMapInitialised() const noexcept;

  /// The map. Null entries are skipped.
  std::vector<std::unique_ptr<AppEventMapEntry>> eventMap;

 private:
  template <class... Args>
  class CallbackEntry;
  template <class Method, class... Args>
  class MethodEntry;

  void ClearSubscriptions();

  std::vector<Subscription> subscriptions;
  const std::type_info* eventMapInitialised = nullptr;  // the class that did it last
  std::int32_t activationCount;
};

/// The entry that On makes for a callable.
template <class... Args>
class AppEventListener::CallbackEntry : public AppEventMapEntry {
 public:
  CallbackEntry(const AppEvent<Args...>& mapped, RepeatingCallback<void(const Args&...)> called)
      : AppEventMapEntry(mapped.Name()), event(mapped), callback(std::move(called)) {}

  Subscription Subscribe(IAppEventBroadcaster& broadcaster) final {
    return event.Subscribe(broadcaster, callback);
  }

 private:
  AppEvent<Args...> event;
  RepeatingCallback<void(const Args&...)> callback;
};

/// The entry that On makes for a method. It remembers the method, so that On finds it again.
template <class Method, class... Args>
class AppEventListener::MethodEntry final : public CallbackEntry<Args...> {
 public:
  MethodEntry(const AppEvent<Args...>& mapped, Method called,
              RepeatingCallback<void(const Args&...)> run)
      : CallbackEntry<Args...>(mapped, std::move(run)), method(called) {}

  [[nodiscard]] bool Is(const VtrString& wanted, Method other) const noexcept {
    return method == other && this->Name() == wanted;
  }

 private:
  Method method;
};

}  // namespace DataBinding

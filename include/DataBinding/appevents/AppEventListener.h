// SPDX-License-Identifier: Apache-2.0
/// The base of objects that listen to application events.
///
/// A subclass says in InitEventMap which events it wants, with On; the map is turned into
/// subscriptions before the next event is delivered, and dropped when the listener is deactivated
/// or ends. InitEventMap runs again after UnregisterAppEvents. Listeners belong to the delivering
/// thread, and may end in a callback. One whose members send events while they are made or end is
/// activated last and deactivated first: its methods would run without the members.
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
  /// A listener that is not activated touches neither the registrar nor the broadcaster.
  explicit AppEventListener(bool activate = true);
  ~AppEventListener() override;

  /// Sets the mark of IsEventMapInitialised; overrides call it last.
  void InitEventMap() override;
  /// Subscribes what the map says. Calling it twice subscribes twice.
  void RegisterAppEventListeners() override;
  /// Ends all subscriptions. Makes no broadcaster where there is none.
  void UnregisterAppEventListeners() override;

  /// Activations count; the listener is known to the registrar while there are any. The count has
  /// no floor, deliberately: one Deactivate too many is made up for by the next Activate.
  void ActivateAppEventListeners();
  /// Undoes one activation; the last one takes the listener off and unsubscribes it.
  void DeactivateAppEventListeners();
  /// True when the map has an entry of exactly that name.
  [[nodiscard]] bool HasListener(VtrStringView name) const;

 protected:
  /// Adds an entry to the map: while this listener lives, the event calls the method, whose
  /// parameters must accept the event's arguments. Does nothing where the map has the event with
  /// that method. Throws std::logic_error for a method of a class that this object is not.
  template <class... Args, class Function, class Listener>
  requires std::is_function_v<Function>
  void On(const AppEvent<Args...>& event, Function Listener::*method) {
    static_assert(std::is_invocable_v<decltype(method), Listener&, const Args&...>,
                  "the method does not take the event's arguments");
    auto* const self = dynamic_cast<Listener*>(this);
    if (self == nullptr) throw std::logic_error("an event is mapped to another object's method");
    using Entry = MethodEntry<Function Listener::*, Args...>;
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
  /// The same for any callable, which the map owns. Each call adds an entry, since callables cannot
  /// be compared: ask IsEventMapInitialised first. A class from which others derive maps methods,
  /// since its map may be made once more for the class that derives from it.
  template <class... Args>
  void On(const AppEvent<Args...>& event,
          const std::type_identity_t<RepeatingCallback<void(const Args&...)>>& callback) {
    eventMap.push_back(std::make_unique<CallbackEntry<Args...>>(
        event, [alive = AsWeakPtr(), callback](const Args&... args) {
          if (alive) callback(args...);
        }));
  }
  /// True once InitEventMap has run to its end. A run that came while this object was still its
  /// base class, since a member sent an event, does not count.
  [[nodiscard]] bool IsEventMapInitialised() const noexcept;

  /// Null entries are skipped.
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

/// The entry that On makes of a callback.
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

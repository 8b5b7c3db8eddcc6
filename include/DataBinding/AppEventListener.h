/// The base of objects that listen to application events.
///
/// A subclass says in InitEventMap which events it wants, with On; the map is turned into
/// subscriptions before the next event is delivered, and dropped when the listener is deactivated
/// or ends. InitEventMap runs again after the registrar's UnregisterAppEvents: fill the map only
/// while IsEventMapInitialised is false. Listeners belong to the delivering thread, and may end in
/// a callback, their own or another's.
///
///   void View::InitEventMap() {
///     if (!IsEventMapInitialised()) On(processStarted, &View::AddRow);
///     AppEventListener::InitEventMap();
///   }
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "DataBinding/AppEventMapEntry.h"
#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/IAppEventListener.h"
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
  void UnregisterAppEventListeners() override;

  /// Activations count; the listener is known to the registrar while there are any. The count has
  /// no floor, deliberately: one Deactivate too many is made up for by the next Activate.
  void ActivateAppEventListeners();
  void DeactivateAppEventListeners();
  /// True when the map has an entry of exactly that name.
  [[nodiscard]] bool HasListener(VtrStringView name) const;

 protected:
  /// Adds an entry to the map: while this listener lives, the event calls the method. The method's
  /// parameters must accept the event's arguments.
  template <class... Args, class Listener, class... Params>
  void On(const AppEvent<Args...>& event, void (Listener::*method)(Params...)) {
    static_assert(std::derived_from<Listener, AppEventListener>, "the method must be a listener's");
    static_assert(std::is_invocable_v<decltype(method), Listener&, const Args&...>,
                  "the method does not take the event's arguments");
    eventMap.push_back(std::make_unique<MethodEntry<AppEvent<Args...>, decltype(method)>>(
        event, method, AsWeakPtr()));
  }
  [[nodiscard]] bool IsEventMapInitialised() const noexcept { return eventMapInitialised; }

  /// Null entries are skipped.
  std::vector<std::unique_ptr<AppEventMapEntry>> eventMap;

 private:
  template <class Event, class Method>
  class MethodEntry;

  void ClearSubscriptions();

  std::vector<Subscription> subscriptions;
  bool eventMapInitialised = false;
  std::int32_t activationCount;
};

template <class... Args, class Listener, class... Params>
class AppEventListener::MethodEntry<AppEvent<Args...>, void (Listener::*)(Params...)> final
    : public AppEventMapEntry {
 public:
  using Method = void (Listener::*)(Params...);

  MethodEntry(const AppEvent<Args...>& mapped, Method called, WeakPtr<AppEventListener> listener)
      : AppEventMapEntry(mapped.Name()),
        event(mapped),
        method(called),
        target(std::move(listener)) {}

  Subscription Subscribe(IAppEventBroadcaster& broadcaster) override {
    return event.Subscribe(broadcaster, [weak = target, call = method](const Args&... args) {
      if (AppEventListener* listener = weak.Get())
        (static_cast<Listener*>(listener)->*call)(args...);
    });
  }

 private:
  AppEvent<Args...> event;
  Method method;
  WeakPtr<AppEventListener> target;
};

}  // namespace DataBinding

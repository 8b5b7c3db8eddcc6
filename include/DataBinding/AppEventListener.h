/// The base of objects that listen to application events.
///
/// A subclass says in InitEventMap which events it wants, with On; the map is turned into
/// subscriptions before the next event is delivered, and dropped when the listener is deactivated
/// or ends. InitEventMap runs again after UnregisterAppEvents: fill the map only while it is not
/// initialised. Listeners belong to the delivering thread, and may end in a callback. One that
/// sends events while it is made or ends is activated last and deactivated first.
///
///   void View::InitEventMap() {
///     if (!IsEventMapInitialised()) On(processStarted, &View::AddRow);
///     AppEventListener::InitEventMap();
///   }
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
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
  /// parameters must accept the event's arguments. Throws std::logic_error for a method of a class
  /// that this object is not.
  template <class... Args, class Function, class Listener>
  requires std::is_function_v<Function>
  void On(const AppEvent<Args...>& event, Function Listener::*method) {
    static_assert(std::is_invocable_v<decltype(method), Listener&, const Args&...>,
                  "the method does not take the event's arguments");
    auto* const self = dynamic_cast<Listener*>(this);
    if (self == nullptr) throw std::logic_error("an event is mapped to another object's method");
    eventMap.push_back(std::make_unique<MethodEntry<AppEvent<Args...>, Function, Listener>>(
        event, method, *self, AsWeakPtr()));
  }
  /// True once InitEventMap has run to its end, for as long as the listener lives.
  [[nodiscard]] bool IsEventMapInitialised() const noexcept { return eventMapInitialised; }

  /// Null entries are skipped.
  std::vector<std::unique_ptr<AppEventMapEntry>> eventMap;

 private:
  template <class Event, class Function, class Listener>
  class MethodEntry;

  void ClearSubscriptions();

  std::vector<Subscription> subscriptions;
  bool eventMapInitialised = false;
  std::int32_t activationCount;
};

template <class... Args, class Function, class Listener>
class AppEventListener::MethodEntry<AppEvent<Args...>, Function, Listener> final
    : public AppEventMapEntry {
 public:
  using Method = Function Listener::*;

  MethodEntry(const AppEvent<Args...>& mapped, Method called, Listener& listener,
              WeakPtr<AppEventListener> alive)
      : AppEventMapEntry(mapped.Name()),
        event(mapped),
        method(called),
        target(&listener),
        liveness(std::move(alive)) {}

  Subscription Subscribe(IAppEventBroadcaster& broadcaster) override {
    return event.Subscribe(
        broadcaster, [alive = liveness, listener = target, call = method](const Args&... args) {
          if (alive) (listener->*call)(args...);
        });
  }

 private:
  AppEvent<Args...> event;
  Method method;
  Listener* target;
  WeakPtr<AppEventListener> liveness;
};

}  // namespace DataBinding

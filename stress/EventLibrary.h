// SPDX-License-Identifier: Apache-2.0
/// The library's side of the event scripts: it carries out each operation and notes what happens.
#pragma once

#include <chrono>
#include <memory>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/AppEventListener.h"
#include "DataBinding/appevents/EventHold.h"
#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/appevents/WAppEventRegistrar.h"
#include "Events.h"

namespace DataBinding::Stress {

class EventLibrary : public Player<EventLibrary> {
 public:
  static constexpr auto& points = eventPoints;
  static auto Operations() { return EventOperations<EventLibrary>(); }

  void End() {
    for (auto& listener : listeners) listener.reset();
    for (auto& hold : holds) hold.reset();
    IAppEventBroadcaster::ReleaseInstance(false);
    WAppEventRegistrar::ReleaseInstance(false);
  }
  void Raise(int event, int latest, int) {
    latest != 0 ? events[event].RaiseLatest(++lastValue) : events[event].Raise(++lastValue);
  }
  void RaiseOwn(int event, int origin, int latest) {
    Broadcaster().QueueEvent(events[event].Name(),
                             std::make_shared<OwnEvent>(*this, event, KeyOf(origin)), latest != 0);
  }
  void Send(int event, int, int) { events[event].Send(++lastValue); }
  void Dispatch(int, int, int) { Broadcaster().DispatchPendingEvents(); }
  void Run(int, int, int) {
    Pass([this] { idle.Run(); });
  }
  void RunFor(int all, int, int) {
    Pass([this, all] { idle.RunFor(all != 0 ? std::chrono::hours(1) : std::chrono::hours(0)); });
  }
  void Subscribe(int slot, int event, int) {
    subscriptions[At(slot)] = events[event].Subscribe(
        [this, slot](int value) { Happen("heard", slot, value, Place::Anywhere); });
  }
  void Cancel(int slot, int, int) { subscriptions[At(slot)].Cancel(); }
  void RenewListener(int which, int wanted, int active) {
    listeners[At(which)].reset();
    listeners[At(which)] = std::make_unique<Listener>(*this, which, wanted, active != 0);
  }
  void Activate(int which, int, int) {
    if (auto* listener = listeners[At(which)].get()) listener->ActivateAppEventListeners();
  }
  void Deactivate(int which, int, int) {
    if (auto* listener = listeners[At(which)].get()) listener->DeactivateAppEventListeners();
  }
  void RegisterListeners(int, int, int) {
    try {
      WAppEventRegistrar::GetInstance().RegisterAppEvents();
    } catch (const Thrown&) {
      Tell("broken off", 0);
    }
  }
  void UnregisterListeners(int, int, int) {
    WAppEventRegistrar::GetInstance().UnregisterAppEvents();
  }
  void Disable(int event, int, int) { Broadcaster().DisableEvent(events[event].Name()); }
  void Enable(int event, int fires, int) {
    Broadcaster().EnableEvent(events[event].Name(), fires != 0);
  }
  void DisableAll(int, int, int) { Broadcaster().DisableAllEvents(); }
  void EnableAll(int fires, int, int) { Broadcaster().EnableAllEvents(fires != 0); }
  void Hold(int slot, int event, int) {
    auto& hold = holds[At(slot)];
    if (hold == nullptr) hold = std::make_unique<EventHold>(events[event]);
  }
  void EndHold(int slot, int drops, int) {
    const auto ended = std::move(holds[At(slot)]);
    if (ended != nullptr && drops != 0) ended->Drop();
  }
  void AddHook(int slot, int, int) {
    const auto hook = EventHook::To<&Spy::See>(spies[At(slot)]);
    spies[At(slot)].id = Broadcaster().RegisterEventHook(hook, KeyOf(slot % 2));
    Tell("hook", spies[At(slot)].id);
  }
  void RemoveHook(int slot, int, int) {
    Tell("unhooked", Broadcaster().UnregisterEventHook(spies[At(slot)].id) ? 1 : 0);
  }
  void DropEvents(int event, int, int) { Broadcaster().DropEvents(events[event].Name()); }
  void DropEventsFrom(int origin, int, int) {
    Broadcaster().DropEventsFrom(KeyOf(origin));
    Tell("unhooked", Broadcaster().UnregisterEventHooks(KeyOf(origin)));
  }
  void SetHandler(int on, int, int) {
    if (on == 0) return Broadcaster().SetErrorHandler(nullptr);
    Broadcaster().SetErrorHandler([this](const VtrString& name, const std::exception_ptr&) {
      Tell("failed", NumberOf(name));
    });
  }
  void TakeFailure(int, int, int) {
    const EventFailure failure = Broadcaster().TakeFailure();
    Tell("failure", failure ? NumberOf(failure.eventName) : -1, static_cast<int>(failure.others));
  }
  void Release(int, int, int) { IAppEventBroadcaster::ReleaseInstance(false); }
  void Observe() {
    Tell("there", IAppEventBroadcaster::HasInstance() ? 1 : 0, idle.IsRequested() ? 1 : 0);
    for (const auto& listener : listeners) {
      for (const auto& event : events) {
        Tell("wants", listener != nullptr && listener->HasListener(event.Name()) ? 1 : 0);
      }
    }
    if (!IAppEventBroadcaster::HasInstance()) return;
    Tell("waits", Broadcaster().HasPendingEvents() ? 1 : 0, Broadcaster().HasFailure() ? 1 : 0);
    for (const auto& event : events) {
      Tell("disabled", Broadcaster().IsDisable(event.Name()) ? 1 : 0,
           Broadcaster().AnyPendingDisableEvents(event.Name()) ? 1 : 0);
    }
  }

 private:
  template <class Dispatch>
  void Pass(Dispatch dispatch) {
    try {
      dispatch();
    } catch (const Thrown&) {
      Tell("threw", static_cast<int>(idle.DroppedFailures()));
    }
  }

  /// An event of the application's own kind, which notes its delivery itself instead of calling
  /// listeners.
  class OwnEvent : public PendingEventBase, public std::enable_shared_from_this<OwnEvent> {
   public:
    OwnEvent(EventLibrary& raiser, int number, const void* key)
        : PendingEventBase(key), world(raiser), event(number), value(++raiser.lastValue) {}
    void Dispatch(PolicyEventBroadcaster& broadcaster) override {
      const auto alive = broadcaster.GetWeakPtr();
      const VtrString& name = events[event].Name();
      const auto guarded = [&](const auto& step) {
        try {
          step();
        } catch (const Thrown&) {
          if (alive) ReportFailure(broadcaster, name);
        }
      };
      guarded([&] { PreNotify(broadcaster); });
      if (HoldIfDisabled(broadcaster, name, shared_from_this())) return;
      guarded([&] { world.Happen("own", event, value, Place::Anywhere); });
      if (alive && HasHooks(broadcaster)) NotifyHooks(broadcaster, name, {});
    }

   private:
    EventLibrary& world;
    int event;
    int value;
  };
  class Listener final : public AppEventListener {
   public:
    Listener(EventLibrary& library, int number, int wantedEvent, bool active)
        : AppEventListener(active), world(library), which(number), wanted(wantedEvent) {}
    void InitEventMap() override {
      if (!IsEventMapInitialised()) {
        for (int i = 0; i <= wanted; ++i) On(events[i], &Listener::Hear);
      }
      AppEventListener::InitEventMap();
      world.Happen("initialised", which, 0, Place::Wiring);
    }
    void Hear(int value) { world.Happen("mapped", which, value, Place::Anywhere); }

   private:
    EventLibrary& world;
    int which;
    int wanted;
  };
  struct Spy {
    void See(const VtrString& name, const std::vector<Any>& arguments) const {
      const int value = arguments.empty() ? -1 - NumberOf(name) : std::any_cast<int>(arguments[0]);
      world->Happen("hooked", slot, value, Place::Anywhere);
    }
    EventLibrary* world;
    int slot;
    int id = 0;
  };

  static IAppEventBroadcaster& Broadcaster() { return IAppEventBroadcaster::GetInstance(); }
  [[nodiscard]] const void* KeyOf(int origin) const {
    return origin == 2 ? ThisModule() : &origins[origin];
  }
  static int NumberOf(const VtrString& name) {
    int number = 0;
    while (events[number].Name() != name) ++number;
    return number;
  }

  static inline const AppEvent<int> events[eventCount] = {
      AppEvent<int>(L"Zero"), AppEvent<int>(L"Zone"), AppEvent<int>(L"Zoom")};
  char origins[originCount] = {};
  Spy spies[hookCount] = {{this, 0}, {this, 1}, {this, 2}};
  std::array<Subscription, subscriptionCount> subscriptions;
  std::array<std::unique_ptr<Listener>, appListenerCount> listeners;
  std::array<std::unique_ptr<EventHold>, holdCount> holds;
  IdlePass idle{[this] { Tell("woken", 0); }};
  int lastValue = 0;
};

}  // namespace DataBinding::Stress

// SPDX-License-Identifier: Apache-2.0
/// A model of the library's application events, written as plainly as it can be.
#pragma once

#include <algorithm>
#include <list>
#include <memory>
#include <optional>
#include <set>

#include "Events.h"

namespace DataBinding::Stress {

class EventModel : public Player<EventModel> {
 public:
  static constexpr auto& points = eventPoints;
  static auto Operations() { return EventOperations<EventModel>(); }

  template <class Library>
  explicit EventModel(Library&) {}
  void End() {
    for (int i = 0; i < appListenerCount; ++i) EndListener(i);
    for (int i = 0; i < holdCount; ++i) EndHold(i, 0, 0);
    Release(0, 0, 0);
  }
  void Raise(int event, int latest, int) { Queue({event, ++lastValue}, latest != 0); }
  void RaiseOwn(int event, int origin, int latest) {
    Queue({event, ++lastValue, origin, true}, latest != 0);
  }
  void Send(int event, int, int) { DeliverNow(Obtain(), {event, ++lastValue}); }
  void Dispatch(int, int, int) { DispatchAll(Obtain()); }
  void Run(int, int, int) {
    Pass([&](const Pointer& events) { DispatchAll(events); });
  }
  void RunFor(int all, int, int) {
    Pass([&](const Pointer& events) { DispatchSingly(events, all != 0); });
  }
  void Subscribe(int slot, int event, int) {
    const int token = Listen(event, "heard", slot);
    Unsubscribe(std::exchange(tokens[slot], token));
  }
  void Cancel(int slot, int, int) { Unsubscribe(tokens[slot]); }
  void RenewListener(int which, int wanted, int active) {
    EndListener(which);
    listeners[which] = {true, wanted};
    if (active != 0) Activate(which, 0, 0);
  }
  void Activate(int which, int, int) {
    if (!listeners[which].isThere || ++listeners[which].activations != 1) return;
    known.push_back(which);
    waiting.push_back(which);
  }
  void Deactivate(int which, int, int) {
    if (!listeners[which].isThere || listeners[which].activations-- != 1) return;
    Forget(which);
  }
  void RegisterListeners(int, int, int) {
    try {
      Flush();
    } catch (const Thrown&) {
      Tell("broken off", 0);
    }
  }
  void UnregisterListeners(int, int, int) {
    for (const int which : known) {
      if (std::ranges::count(waiting, which) == 0) UnsubscribeAll(which);
    }
    waiting = known;
  }
  void Disable(int event, int, int) { ++Obtain()->disabled[event]; }
  void Enable(int event, int fires, int) {
    const Pointer events = Obtain();
    if (events->disabled[event] > 0) Lower(events, events->disabled, event, fires != 0);
  }
  void DisableAll(int, int, int) {
    for (const int event : Obtain()->known) ++current->disabled[event];
  }
  void EnableAll(int fires, int, int) {
    const Pointer events = Obtain();
    for (int i = 0; i < eventCount && !events->isGone; ++i) {
      if (events->known.contains(i) && events->disabled[i] > 0) {
        Lower(events, events->disabled, i, fires != 0);
      }
    }
  }
  void Hold(int slot, int event, int) {
    if (holds[slot]) return;
    holds[slot].emplace(Obtain(), event);
    ++current->holds[event];
  }
  void EndHold(int slot, int drops, int) {
    const auto ended = std::exchange(holds[slot], std::nullopt);
    if (!ended || ended->first->isGone) return;
    Lower(ended->first, ended->first->holds, ended->second, drops == 0);
  }
  void AddHook(int slot, int, int) {
    hookIds[slot] = ++Obtain()->lastHook;
    current->hooks[hookIds[slot]] = slot;
    Tell("hook", hookIds[slot]);
  }
  void RemoveHook(int slot, int, int) {
    Tell("unhooked", static_cast<int>(Obtain()->hooks.erase(hookIds[slot])));
  }
  void DropEvents(int event, int, int) {
    Drop([event](const Event& each) { return each.name == event; });
  }
  void DropEventsFrom(int origin, int, int) {
    Drop([origin](const Event& each) { return each.origin == origin; });
    const auto isFromThere = [origin](const auto& hook) { return hook.second % 2 == origin; };
    Tell("unhooked", static_cast<int>(std::erase_if(current->hooks, isFromThere)));
  }
  void SetHandler(int on, int, int) { Obtain()->hasHandler = on != 0; }
  void TakeFailure(int, int, int) {
    const int failed = std::exchange(Obtain()->failedEvent, -1);
    Tell("failure", failed, failed == -1 ? 0 : current->moreFailures);
  }
  void Release(int, int, int) {
    if (current != nullptr) std::exchange(current, nullptr)->isGone = true;
  }
  void Observe() {
    Tell("there", current != nullptr ? 1 : 0, isRequested ? 1 : 0);
    for (const auto& [isThere, wanted, isMapped, activations, subscribed] : listeners) {
      for (int i = 0; i < eventCount; ++i) Tell("wants", isMapped && i <= wanted ? 1 : 0);
    }
    if (current == nullptr) return;
    Tell("waits", current->queue.empty() ? 0 : 1, current->failedEvent == -1 ? 0 : 1);
    for (int i = 0; i < eventCount; ++i) {
      const bool isDisabled = IsDisabled(*current, i);
      Tell("disabled", isDisabled ? 1 : 0, isDisabled && current->held.contains(i) ? 1 : 0);
    }
  }

 private:
  struct Event {
    int name;
    int value;
    int origin = 2;
    bool isOwnKind = false;
    bool isDropped = false;
  };
  struct Batch {
    std::vector<Event> events;
    std::size_t next = 0;
  };
  struct Subscribed {
    int token;
    int event;
    std::string_view point;
    int subject;
  };
  struct Broadcaster {
    std::vector<Event> queue = {};
    std::list<Batch> batches = {};
    std::vector<Subscribed> listeners = {};
    std::map<int, int> disabled = {};
    std::map<int, int> holds = {};
    std::map<int, Event> held = {};
    std::map<int, int> hooks = {};
    std::set<int> known = {};
    int lastHook = 0;
    int deliveries = 0;
    int failedEvent = -1;
    int moreFailures = 0;
    bool hasHandler = false;
    bool isGone = false;
  };
  using Pointer = std::shared_ptr<Broadcaster>;
  struct Listener {
    bool isThere = false;
    int wanted = 0;
    bool isMapped = false;
    int activations = 0;
    std::vector<int> subscribed = {};
  };

  Pointer Obtain() {
    if (current == nullptr) current = std::make_shared<Broadcaster>();
    return current;
  }
  void Request() {
    if (!std::exchange(isRequested, true)) Tell("woken", 0);
  }
  void Queue(const Event& event, bool replacesLast) {
    auto& queue = Obtain()->queue;
    const auto isNamed = [&](const Event& each) { return each.name == event.name; };
    const auto newest = std::find_if(queue.rbegin(), queue.rend(), isNamed);
    const bool replaces = replacesLast && newest != queue.rend();
    if (replaces) queue.erase(std::next(newest).base());
    queue.push_back(event);
    if (!replaces) Request();
  }
  void DispatchAll(const Pointer& events) {
    if (events->queue.empty()) return;
    Batch& batch = events->batches.emplace_back(Batch{std::exchange(events->queue, {})});
    const auto own = std::prev(events->batches.end());
    ++events->deliveries;
    while (batch.next < batch.events.size() && !events->isGone) {
      const Event event = batch.events[batch.next++];
      if (!event.isDropped) Deliver(events, event);
    }
    --events->deliveries;
    events->batches.erase(own);
  }
  /// Delivers the first event in the queue, or all events that are in it now, one by one.
  void DispatchSingly(const Pointer& events, bool all) {
    const int newest = lastValue;
    auto& queue = events->queue;
    ++events->deliveries;
    for (bool more = true; more && !queue.empty() && queue.front().value <= newest;) {
      const Event event = queue.front();
      queue.erase(queue.begin());
      Deliver(events, event);
      more = all && !events->isGone;
    }
    --events->deliveries;
  }
  template <class Dispatch>
  void Pass(Dispatch dispatch) {
    isRequested = false;
    const Pointer events = current;
    if (events == nullptr) return;
    dispatch(events);
    if (events->isGone) return;
    if (!events->queue.empty()) Request();
    if (events->failedEvent == -1 || events->deliveries > 0) return;
    Tell("threw", events->moreFailures);
    events->failedEvent = -1;
  }
  void DeliverNow(const Pointer& events, const Event& event) {
    const bool hadFailed = events->failedEvent != -1;
    ++events->deliveries;
    Deliver(events, event);
    --events->deliveries;
    const bool fails = !events->isGone && !hadFailed && events->failedEvent != -1;
    if (fails && events->deliveries == 0) Request();
  }
  template <class Step>
  void Guarded(const Pointer& events, int event, Step step) {
    try {
      step();
    } catch (const Thrown&) {
      if (events->isGone) return;
      if (events->hasHandler) return Tell("failed", event);
      if (events->failedEvent != -1) ++events->moreFailures;
      if (events->failedEvent == -1) events->moreFailures = 0;
      if (events->failedEvent == -1) events->failedEvent = event;
    }
  }
  static bool IsDisabled(Broadcaster& events, int event) {
    return events.disabled[event] + events.holds[event] > 0;
  }
  void Deliver(const Pointer& events, const Event& event) {
    Guarded(events, event.name, [&] { Flush(); });
    events->known.insert(event.name);
    if (IsDisabled(*events, event.name)) {
      events->held.insert_or_assign(event.name, event);
      return;
    }
    if (event.isOwnKind) {
      Guarded(events, event.name, [&] { Happen("own", event.name, event.value, Place::Anywhere); });
    } else {
      CallListeners(events, event);
    }
    const int last = events->lastHook;
    for (int id = 1; id <= last && !events->isGone; ++id) {
      if (!events->hooks.contains(id)) continue;
      const int seen = event.isOwnKind ? -1 - event.name : event.value;
      Guarded(events, event.name,
              [&] { Happen("hooked", events->hooks[id], seen, Place::Anywhere); });
    }
  }
  /// Calls the listeners that were there when the delivery began, unless they are cancelled
  /// meanwhile.
  void CallListeners(const Pointer& events, const Event& event) {
    for (const auto& each : std::vector(events->listeners)) {
      const auto isIt = [&](const Subscribed& other) { return other.token == each.token; };
      if (each.event != event.name || events->isGone) continue;
      if (std::ranges::none_of(events->listeners, isIt)) continue;
      Guarded(events, event.name,
              [&] { Happen(each.point, each.subject, event.value, Place::Anywhere); });
    }
  }
  void Lower(const Pointer& events, std::map<int, int>& counts, int event, bool fires) {
    --counts[event];
    if (IsDisabled(*events, event)) return;
    const auto held = events->held.extract(event);
    if (!held.empty() && fires) DeliverNow(events, held.mapped());
  }
  /// Drops the events that are queued, held, or still to come in a batch.
  template <class Matches>
  void Drop(Matches matches) {
    const Pointer events = Obtain();
    std::erase_if(events->queue, matches);
    std::erase_if(events->held, [&](const auto& held) { return matches(held.second); });
    for (Batch& batch : events->batches) {
      for (Event& event : batch.events) event.isDropped |= matches(event);
    }
  }
  int Listen(int event, std::string_view point, int subject) {
    Obtain()->known.insert(event);
    current->listeners.push_back({++lastToken, event, point, subject});
    return lastToken;
  }
  void Unsubscribe(int token) {
    if (current == nullptr) return;
    std::erase_if(current->listeners, [token](const auto& each) { return each.token == token; });
  }
  void UnsubscribeAll(int which) {
    for (const int token : std::exchange(listeners[which].subscribed, {})) Unsubscribe(token);
  }
  void Flush() {
    while (!waiting.empty()) {
      taken = std::exchange(waiting, {});
      try {
        while (!taken.empty()) Initialise();
      } catch (const Thrown&) {
        taken.clear();  // the listeners that this flush had not reached no longer wait
        throw;
      }
    }
  }
  void Initialise() {
    const int which = taken.front();
    taken.erase(taken.begin());
    initialising = which;
    listeners[which].isMapped = true;
    Happen("initialised", which, 0, Place::Wiring);
    if (initialising == -1) return;
    for (int i = 0; i <= listeners[which].wanted; ++i) {
      listeners[which].subscribed.push_back(Listen(i, "mapped", which));
    }
  }
  void Forget(int which) {
    const bool waited = std::erase(waiting, which) + std::erase(taken, which) > 0;
    std::erase(known, which);
    if (!waited && initialising == which) initialising = -1;
    UnsubscribeAll(which);
  }
  void EndListener(int which) {
    if (listeners[which].isThere && listeners[which].activations > 0) Forget(which);
    UnsubscribeAll(which);
    listeners[which] = {};
  }

  Pointer current;
  Listener listeners[appListenerCount];
  std::optional<std::pair<Pointer, int>> holds[holdCount];
  std::vector<int> known;
  std::vector<int> waiting;
  std::vector<int> taken;
  int initialising = -1;
  bool isRequested = false;
  int tokens[subscriptionCount] = {};
  int hookIds[hookCount] = {};
  int lastToken = 0;
  int lastValue = 0;
};

}  // namespace DataBinding::Stress

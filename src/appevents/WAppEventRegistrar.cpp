// SPDX-License-Identifier: Apache-2.0
// The flush, which initialises and subscribes the waiting listeners, although they may add and
// remove listeners meanwhile; and the registrar, which keeps all listeners and those that wait.
#include "DataBinding/appevents/WAppEventRegistrar.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "DataBinding/appevents/IAppEventListener.h"
#include "DataBinding/foundation/details/Cancellation.h"
#include "DataBinding/foundation/details/VisitInOrder.h"

namespace DataBinding {

namespace {
/// True when a listener may wait. It lies outside of the registrar, so that it can be read without
/// the lock and before there is a registrar.
constinit std::atomic<bool> anyWaiting{false};
}  // namespace

/// A flush: it takes the listeners off the waiting list, and initialises and subscribes them one by
/// one. It stands on the stack. Flushes nest, because a listener that is initialised may cause
/// another one.
class WAppEventRegistrar::Flush {
 public:
  Flush(Flush*& innermostFlush, ListenerList& waiting)
      : innermost(innermostFlush), outer(std::exchange(innermostFlush, this)) {
    taken.swap(waiting);
  }
  Flush(const Flush&) = delete;
  Flush& operator=(const Flush&) = delete;
  ~Flush() { innermost = outer; }

  void Run() {
    while (!taken.empty()) {
      current = taken.front();
      taken.pop_front();
      current->InitEventMap();
      if (current != nullptr) current->RegisterAppEventListeners();
    }
  }
  /// Removes a listener that no flush under way has reached yet. False if there is none.
  static bool Forget(Flush* innermost, const IAppEventListener* listener) {
    for (Flush* flush = innermost; flush != nullptr; flush = flush->outer) {
      const auto found = std::ranges::find(flush->taken, listener);
      if (found == flush->taken.end()) continue;
      flush->taken.erase(found);
      return true;
    }
    return false;
  }
  /// Keeps a listener that is being initialised from being subscribed.
  static void Stop(Flush* innermost, const IAppEventListener* listener) noexcept {
    for (Flush* flush = innermost; flush != nullptr; flush = flush->outer) {
      if (flush->current == listener) flush->current = nullptr;
    }
  }
  /// Stops all flushes under way, because all listeners wait again.
  static void StopAll(Flush* innermost) noexcept {
    for (Flush* flush = innermost; flush != nullptr; flush = flush->outer) {
      flush->current = nullptr;
      flush->taken.clear();
    }
  }

 private:
  Flush*& innermost;
  Flush* outer;
  ListenerList taken;
  IAppEventListener* current = nullptr;
};

WAppEventRegistrar::WAppEventRegistrar() = default;
WAppEventRegistrar::~WAppEventRegistrar() = default;

void WAppEventRegistrar::AddEventListener(IAppEventListener* listener) {
  if (listener == nullptr) return;
  const CriticalSectionLock guard(lock);
  ListenerList waiting{listener};
  listeners.emplace_hint(listeners.end(), ++lastAddition, listener);
  delayInitList.splice(delayInitList.end(), waiting);
  anyWaiting.store(true, std::memory_order_release);
}

void WAppEventRegistrar::RemoveEventListener(IAppEventListener* listener) {
  const CriticalSectionLock guard(lock);
  const auto found = std::ranges::find(listeners, listener, &Listeners::value_type::second);
  if (found == listeners.end()) return;
  const bool waited = ForgetWaiting(listener);
  listeners.erase(found);
  if (waited) return;
  Flush::Stop(flush, listener);
  if (registered) listener->UnregisterAppEventListeners();
}

bool WAppEventRegistrar::ForgetWaiting(IAppEventListener* listener) {
  const auto found = std::ranges::find(delayInitList, listener);
  if (found == delayInitList.end()) return Flush::Forget(flush, listener);
  delayInitList.erase(found);
  return true;
}

bool WAppEventRegistrar::IsAnyWaiting() noexcept {
  return anyWaiting.load(std::memory_order_acquire);
}

void WAppEventRegistrar::FlushDelayInitList() {
  while (IsAnyWaiting()) {
    const CriticalSectionLock guard(lock);
    FlushOnce();
  }
}

void WAppEventRegistrar::FlushOnce() {
  anyWaiting.store(false, std::memory_order_relaxed);
  const bool any = !delayInitList.empty();
  Flush(flush, delayInitList).Run();
  if (any) registered = true;
}

void WAppEventRegistrar::RegisterAppEvents() {
  FlushDelayInitList();
  const CriticalSectionLock guard(lock);
  registered = true;
}

void WAppEventRegistrar::UnregisterAppEvents() {
  const CriticalSectionLock guard(lock);
  // The places are made while all listeners are still subscribed, because there may be no memory.
  ListenerList waiting(listeners.size());
  UnsubscribeAll();
  registered = false;
  anyWaiting.store(true, std::memory_order_release);
  // Listeners that were added meanwhile bring a place along, unless a flush has served them, so
  // that resize seldom needs memory.
  waiting.splice(waiting.end(), delayInitList);
  waiting.resize(listeners.size());
  std::ranges::transform(listeners, waiting.begin(), &Listeners::value_type::second);
  delayInitList.swap(waiting);
  Flush::StopAll(flush);
}

DATABINDING_CATCHES_CANCELLATION void WAppEventRegistrar::UnsubscribeAll() {
  const auto visit = [waiting = &delayInitList](std::uint64_t /*addition*/, auto* listener) {
    if (std::ranges::count(*waiting, listener) == 0) listener->UnregisterAppEventListeners();
    return true;
  };
  try {
    VisitInOrder(listeners, visit);
  }
  DATABINDING_PASS_CANCELLATION catch (...) {}
}

}  // namespace DataBinding

template <>
DataBinding::WAppEventRegistrar&
VtrUtils::Singleton<DataBinding::WAppEventRegistrar, 1>::GetInstance() {
  return ObtainInstance();
}

template <>
bool VtrUtils::Singleton<DataBinding::WAppEventRegistrar, 1>::HasInstance() {
  return IsInstanceThere();
}

template <>
void VtrUtils::Singleton<DataBinding::WAppEventRegistrar, 1>::ReleaseInstance(bool markReleased) {
  EndInstance(markReleased);
}

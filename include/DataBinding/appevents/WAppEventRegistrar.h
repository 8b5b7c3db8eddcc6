// SPDX-License-Identifier: Apache-2.0
/// Knows every activated listener to application events, and subscribes each as late as it may.
///
/// A listener that is added waits until the next flush, which comes before the next event is
/// delivered, or until the application calls RegisterAppEvents. Listeners are not owned. One lock,
/// recursive, guards everything and is held while listeners are called: they may add and remove
/// listeners, other threads wait.
///
/// One that is removed during a flush before it was reached is not touched any more; one that is
/// removed in its own InitEventMap is not subscribed. When a listener throws out of a flush, those
/// that it had not reached are no longer waiting, deliberately: they stay known, and the next
/// UnregisterAppEvents makes them wait again. A listener must not release the registrar itself
/// while it is called.
#pragma once

#include <cstdint>
#include <list>
#include <map>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/CriticalSection.h"
#include "DataBinding/foundation/Singleton.h"

namespace DataBinding {

class DATABINDING_API WAppEventRegistrar : public Singleton<WAppEventRegistrar, 1> {
 public:
  /// Adds a listener, once more if it is known already. Ignores null.
  void AddEventListener(IAppEventListener* listener);
  /// Takes one occurrence of a listener off, and unsubscribes it if it was subscribed. Does nothing
  /// for a listener that is not known.
  void RemoveEventListener(IAppEventListener* listener);
  /// Initialises and subscribes those that wait, and those that they add. Takes no lock where
  /// nobody waits.
  void FlushDelayInitList();
  /// Whether a flush would find anybody. Any thread; makes no registrar.
  [[nodiscard]] static bool IsAnyWaiting() noexcept;
  /// The application is ready: flushes.
  void RegisterAppEvents();
  /// Unsubscribes the listeners and makes all wait again. When one throws, those behind it stay
  /// subscribed, deliberately, and nothing is let out. Inside a flush it stops the pass under way;
  /// the next pass, of the same flush, serves each listener once.
  void UnregisterAppEvents();

 protected:
  friend class VtrUtils::Singleton<WAppEventRegistrar, 1>;
  WAppEventRegistrar();
  ~WAppEventRegistrar();

 private:
  using ListenerList = std::list<IAppEventListener*>;
  using Listeners = std::map<std::uint64_t, IAppEventListener*>;
  class Flush;

  void FlushOnce() DATABINDING_REQUIRES(lock);
  bool ForgetWaiting(IAppEventListener* listener) DATABINDING_REQUIRES(lock);
  void UnsubscribeAll() DATABINDING_REQUIRES(lock);

  /// The listeners by the number of their addition.
  Listeners listeners DATABINDING_GUARDED_BY(lock);
  std::uint64_t lastAddition DATABINDING_GUARDED_BY(lock) = 0;
  ListenerList delayInitList DATABINDING_GUARDED_BY(lock);
  bool registered DATABINDING_GUARDED_BY(lock) = false;
  CriticalSection lock;
  /// The innermost flush that is under way.
  Flush* flush DATABINDING_GUARDED_BY(lock) = nullptr;
};

}  // namespace DataBinding

// The library itself makes and owns the instance, whichever module asks for it first.
template <>
DATABINDING_API DataBinding::WAppEventRegistrar&
VtrUtils::Singleton<DataBinding::WAppEventRegistrar, 1>::GetInstance();
template <>
DATABINDING_API bool VtrUtils::Singleton<DataBinding::WAppEventRegistrar, 1>::HasInstance();
template <>
DATABINDING_API void VtrUtils::Singleton<DataBinding::WAppEventRegistrar, 1>::ReleaseInstance(
    bool markReleased);

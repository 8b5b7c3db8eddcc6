// SPDX-License-Identifier: Apache-2.0
/// Knows every activated listener to application events, and subscribes each as late as possible.
///
/// A listener that is added waits until the next flush. A flush comes before the next event is
/// delivered, or when the application calls RegisterAppEvents. It calls InitEventMap and then
/// RegisterAppEventListeners of each waiting listener.
///
/// The registrar does not own its listeners. One recursive lock guards everything and is held while
/// listeners are called: they may add and remove listeners, and other threads wait. A listener must
/// not release the registrar while it is called.
///
/// A flush does not touch a listener that is removed before the flush has reached it, and does not
/// subscribe one that is removed in its own InitEventMap. When a listener throws out of a flush,
/// the listeners that the flush had not reached deliberately wait no longer. They stay known, and
/// the next UnregisterAppEvents makes them wait again.
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
  /// Adds a listener. It may be added several times, and must then be removed as often. Ignores
  /// null.
  void AddEventListener(IAppEventListener* listener);
  /// Takes one addition of a listener back, and unsubscribes the listener if it was subscribed.
  /// Does nothing for a listener that is not known.
  void RemoveEventListener(IAppEventListener* listener);
  /// Initialises and subscribes the waiting listeners, and those that they add meanwhile. Takes no
  /// lock when no listener waits.
  void FlushDelayInitList();
  /// True if a listener waits for a flush. Any thread; does not make a registrar.
  [[nodiscard]] static bool IsAnyWaiting() noexcept;
  /// Flushes. The application calls this when it is ready to receive events.
  void RegisterAppEvents();
  /// Unsubscribes the listeners and makes all wait again. When one throws, the listeners behind it
  /// deliberately stay subscribed, and the exception is dropped. Inside a flush it stops the
  /// round that is under way; the next round of the same flush serves each listener once.
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
  /// The innermost flush that is under way, else null.
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

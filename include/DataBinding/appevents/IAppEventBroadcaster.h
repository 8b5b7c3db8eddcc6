// SPDX-License-Identifier: Apache-2.0
/// The event broadcaster of the application. The process has one, whichever modules use it.
///
/// In addition to the base class it has hooks, which see all events with their arguments, for logs
/// and test tools. Hooks belong to the delivering thread.
///
/// The broadcaster is made on first use. It ends when it is released or the library is unloaded. A
/// later use makes another one, without the subscriptions of the first: code that called Subscribe
/// calls it anew, and WAppEventRegistrar::UnregisterAppEvents has the registrar's listeners
/// subscribed again.
///
///   auto& events = IAppEventBroadcaster::GetInstance();
///   const Subscription seen = events.AddEventHook([](const VtrString& name, const auto& args)
///   {...});
#pragma once

#include <map>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/appevents/EventBroadcaster.h"
#include "DataBinding/foundation/Any.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Delegate.h"
#include "DataBinding/foundation/Singleton.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

/// A hook that is called with the name of each event, and with its arguments in their order and
/// exact types. It owns nothing.
using EventHook = Delegate<void(VtrString, const std::vector<Any>&)>;
/// A hook of any callable, which it owns. It is called with the same arguments.
using EventHookCallback = RepeatingCallback<void(const VtrString&, const std::vector<Any>&)>;

#if defined(__GNUC__)  // the base's destructor is deliberately not virtual
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

class DATABINDING_API IAppEventBroadcaster final : public PolicyEventBroadcaster,
                                                   public Singleton<IAppEventBroadcaster, 0> {
 public:
  /// Adds a hook and gives its id: 1, 2, and so on; no id is used again. Hooks run after the
  /// listeners, in the order of their ids. An exception of a hook is treated like a listener's.
  int RegisterEventHook(EventHook hook, const void* origin = nullptr);
  /// Removes the hook of an id. False if there is none.
  bool UnregisterEventHook(int id);
  /// Removes all hooks that were registered with that origin, and gives their number. Removes none
  /// for null.
  int UnregisterEventHooks(const void* origin);
  /// Adds a hook, which gets an id like the others and is removed when the subscription ends. The
  /// subscription may end after the broadcaster, and ends on the delivering thread. A null callback
  /// gives an inert subscription.
  Subscription AddEventHook(const EventHookCallback& hook);

 protected:
  [[nodiscard]] bool AnyEventHooksRegistered() const override;
  void OnEventDispatched(VtrString name, const std::vector<Any>& args) override;

 private:
  friend class VtrUtils::Singleton<IAppEventBroadcaster, 0>;
  struct Hook {
    EventHookCallback call;
    const void* origin = nullptr;
  };

  IAppEventBroadcaster();
  ~IAppEventBroadcaster();

  int nextHookId = 1;
  std::map<int, Hook> eventHooks;
  /// The last member, so that it ends first: while the hooks end, their subscriptions do nothing.
  WeakPtrFactory<IAppEventBroadcaster> hooksFactory{this};
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

}  // namespace DataBinding

// The library itself makes and owns the instance, whichever module asks for it first.
template <>
DATABINDING_API DataBinding::IAppEventBroadcaster&
VtrUtils::Singleton<DataBinding::IAppEventBroadcaster, 0>::GetInstance();
template <>
DATABINDING_API bool VtrUtils::Singleton<DataBinding::IAppEventBroadcaster, 0>::HasInstance();
template <>
DATABINDING_API void VtrUtils::Singleton<DataBinding::IAppEventBroadcaster, 0>::ReleaseInstance(
    bool markReleased);

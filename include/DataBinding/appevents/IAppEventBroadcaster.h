// SPDX-License-Identifier: Apache-2.0
/// The event broadcaster of the application: one in the process, whichever modules use it.
///
/// Beside what every broadcaster does it has hooks, which see all events with their arguments, for
/// logs and test tools. It is made on first use and ends when it is released or the library is
/// unloaded; a later use makes another one, without the subscriptions of the first. What was made
/// by Subscribe is made anew; listeners are brought back by
/// WAppEventRegistrar::UnregisterAppEvents. Hooks belong to the delivering thread.
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

/// Sees each event: its name, and its arguments in their order and exact types. Owns nothing.
using EventHook = Delegate<void(VtrString, const std::vector<Any>&)>;
/// The same as any callable, which is owned.
using EventHookCallback = RepeatingCallback<void(const VtrString&, const std::vector<Any>&)>;

#if defined(__GNUC__)  // the base's destructor is deliberately not virtual
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

class DATABINDING_API IAppEventBroadcaster final : public PolicyEventBroadcaster,
                                                   public Singleton<IAppEventBroadcaster, 0> {
 public:
  /// Adds a hook and gives its id: 1, 2, ..., never used again. Hooks run after the listeners, in
  /// order of their ids; what one throws is treated as a listener's exception.
  int RegisterEventHook(EventHook hook, const void* owner = nullptr);
  /// Removes a hook, and says whether there was one of that id.
  bool UnregisterEventHook(int id);
  /// Removes all hooks that were registered for an owner, and says how many. None for null.
  int UnregisterEventHooks(const void* owner);
  /// Adds a hook until the subscription ends, which it may do after the broadcaster, on the
  /// delivering thread. It has an id like the others. A null callback gives an inert subscription.
  Subscription AddEventHook(const EventHookCallback& hook);

 protected:
  [[nodiscard]] bool AnyEventHooksRegistered() const override;
  void OnEventDispatched(VtrString name, const std::vector<Any>& args) override;

 private:
  friend class VtrUtils::Singleton<IAppEventBroadcaster, 0>;
  struct Hook {
    EventHookCallback call;
    const void* owner = nullptr;
  };

  IAppEventBroadcaster();
  ~IAppEventBroadcaster();

  int nextHookId = 1;
  std::map<int, Hook> eventHooks;
  /// The last member: while hooks end, subscriptions of hooks do nothing any more.
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

// SPDX-License-Identifier: Apache-2.0
/// Property-change notification: callbacks registered for a property name are run when somebody
/// announces a change of exactly that name.
///
/// Register, cancel, query and announce from any thread, for the first time too; only copying,
/// assigning and ending a broadcaster must not race with its other uses. Callbacks run on the
/// announcing thread, in order of registration, with no lock held: they may register, cancel,
/// announce, or end the broadcaster. An announcement runs those that were registered when it began:
/// one that is cancelled meanwhile still runs once, one that registers meanwhile waits for the
/// next. What a callback throws is swallowed and the next one runs (see ListenerGuard.h).
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

namespace details {

class WListenersImpl;

/// Holds the listeners of one broadcaster and its copies: one pointer, null until needed.
class DATABINDING_API Broadcaster {
 public:
  Broadcaster() noexcept = default;
  Broadcaster(const Broadcaster& other) noexcept;
  Broadcaster& operator=(const Broadcaster& other) noexcept;
  ~Broadcaster();

  Subscription Register(const RepeatingCallback<void()>& callback, const VtrString& property);
  void UpdateListeners(const VtrString& property);
  [[nodiscard]] std::uint64_t GetNumRegistered(const VtrString& property) const;
  [[nodiscard]] bool AreListenersAvailable(const VtrString& property) const;
  [[nodiscard]] std::vector<VtrString> GetRegisteredProperties() const;

 private:
  WListenersImpl& Listeners() const;
  [[nodiscard]] WListenersImpl* Existing() const noexcept {
    return registry.load(std::memory_order_acquire);
  }

  /// Set once, by whichever thread uses the broadcaster first.
  mutable std::atomic<WListenersImpl*> registry{nullptr};
};

}  // namespace details

/// Copies deliberately share their listeners: what is registered through one is announced through
/// both, for code that hands a broadcaster on by value. A copy made before the first use shares
/// nothing. The listeners end with the last copy.
class DATABINDING_API IBroadcaster {
 public:
  IBroadcaster() noexcept;
  /// Shares the other's listeners, if it has been used.
  ///@{
  IBroadcaster(const IBroadcaster& other) noexcept;
  IBroadcaster& operator=(const IBroadcaster& other) noexcept;
  ///@}

  /// Runs the callback whenever the property is announced, until the subscription ends. Registering
  /// one callback twice makes two listeners. A null callback is counted and never run.
  virtual Subscription Register(const RepeatingCallback<void()>& callback,
                                const VtrString& property);
  /// Registers a callback that is called by one announcement only: the registration ends when it
  /// has returned or thrown. It is called at most once also where announcements nest or several
  /// threads announce at a time. It may own its Subscription, by which it can be ended before.
  /// Where Register is overridden and gives a Subscription of its own, only that one ends it.
  Subscription RegisterOnce(OneShotCallback<void()> callback, const VtrString& property);
  /// Runs the property's callbacks. Allocates nothing once the broadcaster has been used and the
  /// thread has announced before.
  virtual void UpdateListeners(const VtrString& property);
  /// True when somebody is registered for the property.
  [[nodiscard]] virtual bool AreListenersAvailable(const VtrString& property) const;
  /// The properties that somebody is registered for, in no particular order.
  [[nodiscard]] virtual std::vector<VtrString> GetRegisteredProperties() const;

 protected:
  virtual ~IBroadcaster();

  /// How many callbacks are registered for exactly this property.
  [[nodiscard]] std::uint64_t GetNumRegistered(const VtrString& property) const;

  /// For derived classes that announce without their own override.
  details::Broadcaster broadcaster;
};

}  // namespace DataBinding

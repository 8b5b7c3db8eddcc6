// SPDX-License-Identifier: Apache-2.0
/// An IBroadcaster notifies callbacks of changed properties. A callback is registered for the name
/// of a property, and runs whenever somebody announces a change of exactly that name.
///
/// Any thread may register, cancel, ask and announce, also for the first time. Only copying,
/// assigning and ending a broadcaster must not race with its other uses.
///
/// Callbacks run on the announcing thread, in the order of their registration. No lock is held
/// while they run, so they may register, cancel, announce, or end the broadcaster. An announcement
/// runs the callbacks that were registered when it began: a callback that is cancelled meanwhile
/// still runs once, and a callback that is registered meanwhile first runs in the next
/// announcement. When a callback throws, the exception is swallowed and the next callback runs
/// (see ListenerGuard.h).
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

/// Points to the listeners that one broadcaster shares with its copies. The pointer is null until
/// the broadcaster is first used.
class DATABINDING_API Broadcaster {
 public:
  Broadcaster() noexcept = default;
  Broadcaster(const Broadcaster& other) noexcept;
  Broadcaster& operator=(const Broadcaster& other) noexcept;
  ~Broadcaster() {
    if (WListenersImpl* const owned = Existing()) Leave(*owned);
  }

  Subscription Register(const RepeatingCallback<void()>& callback, const VtrString& property);
  Subscription RegisterAny(const RepeatingCallback<void(const VtrString& property)>& callback);
  void UpdateListeners(const VtrString& property);
  [[nodiscard]] std::uint64_t GetNumRegistered(const VtrString& property) const;
  [[nodiscard]] bool AreListenersAvailable(const VtrString& property) const;
  [[nodiscard]] std::vector<VtrString> GetRegisteredProperties() const;

 private:
  WListenersImpl& Listeners() const {
    WListenersImpl* const existing = Existing();
    return existing != nullptr ? *existing : MakeListeners();
  }
  WListenersImpl& MakeListeners() const;
  static void Leave(WListenersImpl& owned) noexcept;
  [[nodiscard]] WListenersImpl* Existing() const noexcept {
    return registry.load(std::memory_order_acquire);
  }

  /// Set once, by whichever thread uses the broadcaster first.
  mutable std::atomic<WListenersImpl*> registry{nullptr};
};

}  // namespace details

/// Copies deliberately share their listeners, for code that hands a broadcaster on by value: an
/// announcement through one copy reaches what was registered through another. A copy that is made
/// before the first use shares nothing. The listeners end with the last copy.
class DATABINDING_API IBroadcaster {
 public:
  IBroadcaster() noexcept = default;
  /// Shares the listeners of the other broadcaster, if that has been used.
  ///@{
  IBroadcaster(const IBroadcaster& other) noexcept;
  IBroadcaster& operator=(const IBroadcaster& other) noexcept;
  ///@}

  /// Runs the callback whenever the property is announced, until the subscription ends. Registering
  /// one callback twice makes two listeners. A null callback is counted and does nothing.
  virtual Subscription Register(const RepeatingCallback<void()>& callback,
                                const VtrString& property);
  /// Registers a callback for one announcement only: the registration ends when the callback has
  /// returned or thrown. It is called at most once, even where announcements nest or several
  /// threads announce at a time. The Subscription ends the registration before that, and the
  /// callback may own it. Where an override of Register returns a Subscription of its own, the
  /// registration does not end after the call, but only with that Subscription.
  Subscription RegisterOnce(OneShotCallback<void()> callback, const VtrString& property);
  /// Runs the callbacks that are registered for the property. It allocates nothing once the
  /// broadcaster has been used and the thread has announced before.
  virtual void UpdateListeners(const VtrString& property);
  /// Returns true when a callback is registered for the property, or one for any property.
  [[nodiscard]] virtual bool AreListenersAvailable(const VtrString& property) const;
  /// Returns the properties for which callbacks are registered, in no particular order. A callback
  /// for any property adds no name.
  [[nodiscard]] virtual std::vector<VtrString> GetRegisteredProperties() const;

 protected:
  virtual ~IBroadcaster() = default;

 public:
  /// Runs the callback with the name of each property that is announced, after the callbacks that
  /// are registered for this name. A list that a data source announces is heard name by name. In
  /// everything else such a registration is like one of Register; its cost does not depend on the
  /// number of names. The name is good until the callback returns, even if an earlier callback has
  /// ended the announced text. A class whose override of Register registers elsewhere overrides
  /// this operation, too. It stands last so that the places of the others stay.
  virtual Subscription RegisterAny(
      const RepeatingCallback<void(const VtrString& property)>& callback);

 protected:
  /// Returns how many callbacks are registered for exactly this property.
  [[nodiscard]] std::uint64_t GetNumRegistered(const VtrString& property) const;

  /// A derived class that overrides UpdateListeners announces by this object, which does not call
  /// the override.
  details::Broadcaster broadcaster;
};

}  // namespace DataBinding

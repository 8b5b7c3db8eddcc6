// SPDX-License-Identifier: Apache-2.0
/// WListenersImpl is the registry behind a broadcaster and its copies. It holds the listeners by
/// property.
///
/// The broadcasters own it in common. When the last of these owners ends, the registry empties
/// itself under its lock. Subscriptions, and broadcasts that will report, may need the registry
/// after that: they are its keepers, and it is freed with the last of them. Under the lock a
/// subscription asks whether the registry has been emptied; if so, its registration has ended.
///
/// To its subscriptions the registry is the state of all their registrations, and its keepers are
/// the references to that state. The subscriptions are counted under the lock, which they take
/// anyway, and share one reference.
///
/// Callbacks are run, and released, with no lock held. docs/how-it-works.md, "The broadcast
/// protocol", tells how this works together with arrays, pins and reports.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "PropertyTable.h"
#include "RegistryLock.h"

namespace DataBinding::details {

/// Leads a subscription to its listener. The registry's lock guards the entry, which must not be
/// used once the registry has been emptied. It may serve another name by then, but ids are not
/// given twice.
struct Registered {
  PropertyEntry* entry = nullptr;
  std::uint64_t id = 0;
};

using ListenerChange = void (ListenerArray::*)(std::uint32_t position) noexcept;

class WListenersImpl final : public BindStateBase {
 public:
  WListenersImpl() noexcept;
  WListenersImpl(const WListenersImpl&) = delete;
  WListenersImpl& operator=(const WListenersImpl&) = delete;

  Subscription Register(const RepeatingCallback<void()>& callback, const VtrString& property);
  Subscription RegisterAny(const RepeatingCallback<void(const VtrString&)>& callback);
  void UpdateListeners(const VtrString& property);
  [[nodiscard]] bool AreListenersAvailable(const VtrString& property);
  [[nodiscard]] std::uint64_t GetNumRegistered(const VtrString& property);
  [[nodiscard]] std::vector<VtrString> GetRegisteredProperties();

  /// Ends a registration. Does nothing if it has ended already, or the registry has been emptied.
  /// If the subscription to it does so, it is no keeper any more.
  void Remove(const Registered& listener, bool bySubscription);
  /// Ends a registration, makes broadcasts that are under way pass the listener over, and waits
  /// until no other thread is calling it. It waits also when the registry has been emptied during
  /// such a call.
  void RemoveAndWait(const Registered& listener);
  /// Begins or ends a pause of the listener; `change` is ListenerArray::Pause or Resume.
  void Pause(const Registered& listener, ListenerChange change);
  /// Counts a report that is due for an array, and the keeper that goes with it, so that neither
  /// the array nor the registry is freed before that Report(). The caller holds the registry's
  /// lock.
  void ExpectReport(ListenerArray& array) noexcept;
  /// Makes a report that was expected: releases what was removed from the array, if no other run
  /// can see it, and frees a retired array after its last report. Then drops the keeper.
  void Report(ListenerArray& array) noexcept;

  void AddOwner() noexcept { owners.fetch_add(1, std::memory_order_relaxed); }
  void DropOwner() noexcept;

 private:
  /// Holds what a removal leaves to be released after the lock.
  struct Removed {
    comlike_ptr<const BindStateBase> state;
    ListenerArrayPtr array;
  };
  /// A Place is the position of a listener in an array for which a report is expected, so that the
  /// array stays. The array is null if there is nothing to wait for.
  struct Place {
    ListenerArray* array = nullptr;
    std::uint32_t position = 0;
  };

  static const Traits traits;

  ~WListenersImpl() = default;

  static void Destroy(const BindStateBase* state);
  static void Handle(const BindStateBase* state, RegistrationRequest request,
                     const RegistrationKey& key);
  Subscription Add(const RepeatingCallbackBase& callback, const VtrString* property);
  void UpdateWithAny(const VtrString& property);
  PropertyEntry& EntryOf(const VtrString* property) DATABINDING_REQUIRES(lock);
  ListenerArrayPtr TakeArray(PropertyEntry& entry) noexcept DATABINDING_REQUIRES(lock);
  void MakeRoom(PropertyEntry& entry, ListenerArrayPtr& replaced) DATABINDING_REQUIRES(lock);
  [[nodiscard]] std::optional<std::uint32_t> Find(const Registered& listener) const noexcept
      DATABINDING_REQUIRES(lock);
  Removed TakeOut(PropertyEntry& entry, std::uint32_t position) noexcept DATABINDING_REQUIRES(lock);
  void Retire(ListenerArrayPtr& array) noexcept DATABINDING_REQUIRES(lock);
  void Forget(const ListenerArray& ended) noexcept DATABINDING_REQUIRES(lock);
  Place Keep(ListenerArray& array, std::uint32_t position) noexcept DATABINDING_REQUIRES(lock);
  Place Silence(const Registered& listener);
  Place KeepWhereCalled(std::uint64_t id, bool fenced) noexcept;
  void ChangeInAll(const Registered& listener, ListenerChange change) noexcept
      DATABINDING_REQUIRES(lock);
  void Clear() noexcept;

  RegistryLock lock;
  PropertyTable properties DATABINDING_GUARDED_BY(lock);
  /// Holds the listeners to any property, which take its name. The array is null without any.
  PropertyEntry any DATABINDING_GUARDED_BY(lock);
  std::uint64_t lastListenerId DATABINDING_GUARDED_BY(lock) = 0;
  /// Heads the list of the arrays that no property has any more, but broadcasts still run.
  ListenerArray* retired DATABINDING_GUARDED_BY(lock) = nullptr;
  /// Set when the last owner has ended and the entries are gone.
  bool isEmptied DATABINDING_GUARDED_BY(lock) = false;
  /// Counts the subscriptions that have not left, which share one keeper.
  std::uint64_t subscriptions DATABINDING_GUARDED_BY(lock) = 0;
  /// The owners share one keeper, too: that with which the registry begins.
  std::atomic<std::uint32_t> owners{1};
};

}  // namespace DataBinding::details

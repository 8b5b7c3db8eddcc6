// SPDX-License-Identifier: Apache-2.0
/// The registry behind a broadcaster and its copies: listeners by property.
///
/// Owned in common by the broadcasters (owners); it empties itself, under its lock, when the last
/// of them goes. Subscriptions and reporting broadcasts keep only its memory (keepers): they ask
/// under the lock whether it has been emptied, and are inert from then on. Callbacks and their
/// states run and are released with no lock held.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "PropertyTable.h"
#include "RegistryLock.h"

namespace DataBinding::details {

/// By this a subscription finds its listener again. The registry's lock guards the entry, which is
/// null when the listener has ended, and must not be read when the registry has been emptied.
struct Registered {
  PropertyEntry* entry = nullptr;
  std::uint64_t id = 0;
};

using ListenerChange = void (ListenerArray::*)(std::uint32_t position) noexcept;

class WListenersImpl {
 public:
  WListenersImpl() = default;
  WListenersImpl(const WListenersImpl&) = delete;
  WListenersImpl& operator=(const WListenersImpl&) = delete;

  Subscription Register(const RepeatingCallback<void()>& callback, const VtrString& property);
  void UpdateListeners(const VtrString& property);
  [[nodiscard]] bool AreListenersAvailable(const VtrString& property);
  [[nodiscard]] std::uint64_t GetNumRegistered(const VtrString& property);
  [[nodiscard]] std::vector<VtrString> GetRegisteredProperties();

  /// Ends one registration, unless it or the registry has ended already.
  void Remove(Registered& listener);
  /// The same, but waits for other threads that are in the call of the listener, and sees to it
  /// that nobody calls it any more, also when the registry has been emptied under such a call.
  void RemoveAndWait(Registered& listener);
  /// Pauses the listener or ends one of its pauses, by ListenerArray::Pause or Resume.
  void Pause(Registered& listener, ListenerChange change);
  /// Counts a report that is due for an array, and the keeper that goes with it, so that neither the
  /// array nor the registry is freed before that Report(). The caller holds the registry's lock.
  void ExpectReport(ListenerArray& array) noexcept;
  /// The end of a broadcast whose pin was handed over; drops its report and its keeper.
  void Report(ListenerArray& array) noexcept;

  void AddOwner() noexcept { owners.fetch_add(1, std::memory_order_relaxed); }
  void DropOwner() noexcept;
  [[nodiscard]] bool HasOwner() const noexcept {
    return owners.load(std::memory_order_acquire) != 0;
  }
  void AddKeeper() noexcept { keepers.fetch_add(1, std::memory_order_relaxed); }
  void DropKeeper() noexcept;

 private:
  /// What is to be released without the lock.
  struct Removed {
    comlike_ptr<const BindStateBase> state;
    std::unique_ptr<PropertyEntry> entry;
  };
  /// Where a listener stands in an array that is kept by a report to come; null for nowhere.
  struct Place {
    ListenerArray* array = nullptr;
    std::uint32_t position = 0;
  };

  ~WListenersImpl() = default;

  void MakeRoom(PropertyEntry& entry, ListenerArrayPtr& replaced) DATABINDING_REQUIRES(lock);
  Removed TakeOut(Registered& listener) noexcept DATABINDING_REQUIRES(lock);
  void Retire(ListenerArrayPtr& array) noexcept DATABINDING_REQUIRES(lock);
  void Forget(const ListenerArray& ended) noexcept DATABINDING_REQUIRES(lock);
  Place Keep(ListenerArray& array, std::uint64_t id) noexcept DATABINDING_REQUIRES(lock);
  Place Silence(Registered& listener);
  Place KeepWhereCalled(std::uint64_t id, bool fenced) noexcept;
  [[nodiscard]] bool IsRegistered(const Registered& listener) const noexcept
      DATABINDING_REQUIRES(lock) {
    return !isEmptied && listener.entry != nullptr;
  }
  void ChangeInAll(const Registered& listener, ListenerChange change) noexcept
      DATABINDING_REQUIRES(lock);
  void Clear() noexcept;

  RegistryLock lock;
  PropertyTable properties DATABINDING_GUARDED_BY(lock);
  std::uint64_t lastListenerId DATABINDING_GUARDED_BY(lock) = 0;
  /// The first of the arrays that broadcasts still run, but no property has any more.
  ListenerArray* retired DATABINDING_GUARDED_BY(lock) = nullptr;
  /// Set when the entries have gone with the last owner.
  bool isEmptied DATABINDING_GUARDED_BY(lock) = false;
  std::atomic<std::uint32_t> owners{1};
  /// Starts at 1: the owners share one keeper, which is dropped with the last of them.
  std::atomic<std::uint32_t> keepers{1};
};

}  // namespace DataBinding::details

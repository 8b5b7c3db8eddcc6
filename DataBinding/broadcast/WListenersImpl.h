/// The registry behind a broadcaster and its copies: listeners by property.
///
/// Owned in common by the broadcasters (owners); it empties itself when the last of them goes.
/// Subscriptions and reporting broadcasts keep only its memory (keepers), and turn inert with it. A
/// removal on another thread takes part in the ownership for as long as it lasts, so that it cannot
/// race with the end. Callbacks and their states run and are released with no lock held.
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

  /// Ends one registration. The caller is an owner.
  void Remove(PropertyEntry& entry, std::uint64_t id);
  /// The end of a broadcast whose pin was handed over; drops its report and its keeper.
  void Report(ListenerArray& array) noexcept;

  void AddOwner() noexcept { owners.fetch_add(1, std::memory_order_relaxed); }
  /// Becomes an owner unless the last one is gone.
  [[nodiscard]] bool TryAddOwner() noexcept;
  void DropOwner() noexcept;
  [[nodiscard]] bool HasOwner() const noexcept {
    return owners.load(std::memory_order_acquire) != 0;
  }
  void AddKeeper() noexcept { keepers.fetch_add(1, std::memory_order_relaxed); }
  void DropKeeper() noexcept;

 private:
  ~WListenersImpl() = default;

  void MakeRoom(PropertyEntry& entry, ListenerArrayPtr& replaced) DATABINDING_REQUIRES(lock);
  void Clear() noexcept;

  RegistryLock lock;
  PropertyTable properties DATABINDING_GUARDED_BY(lock);
  std::uint64_t lastListenerId DATABINDING_GUARDED_BY(lock) = 0;
  std::atomic<std::uint32_t> owners{1};
  /// All owners together count as one.
  std::atomic<std::uint32_t> keepers{1};
};

}  // namespace DataBinding::details

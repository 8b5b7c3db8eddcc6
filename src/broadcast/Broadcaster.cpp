// SPDX-License-Identifier: Apache-2.0
// This file holds the broadcaster that applications see. It makes the registry on first use, counts
// its copies as owners of the registry, and passes everything else on to it. An announcement makes
// the registry, too, since copies share their listeners from the first use on.
#include <utility>

#include "DataBinding/broadcast/IBroadcaster.h"
#include "DataBinding/foundation/details/CallOnce.h"
#include "WListenersImpl.h"

namespace DataBinding {

namespace details {

Broadcaster::Broadcaster(const Broadcaster& other) noexcept : registry(other.Existing()) {
  if (WListenersImpl* shared = Existing()) shared->AddOwner();
}

Broadcaster& Broadcaster::operator=(const Broadcaster& other) noexcept {
  Broadcaster copy(other);
  copy.registry = registry.exchange(copy.Existing());
  return *this;
}

void Broadcaster::Leave(WListenersImpl& owned) noexcept { owned.DropOwner(); }

WListenersImpl& Broadcaster::MakeListeners() const {
  WListenersImpl* existing = nullptr;
  auto* const made = new WListenersImpl;
  if (registry.compare_exchange_strong(existing, made)) return *made;
  made->DropOwner();  // another thread was faster, and its registry is used
  return *existing;
}

Subscription Broadcaster::Register(const RepeatingCallback<void()>& callback,
                                   const VtrString& property) {
  return Listeners().Register(callback, property);
}

Subscription Broadcaster::RegisterAny(
    const RepeatingCallback<void(const VtrString& property)>& callback) {
  return Listeners().RegisterAny(callback);
}

void Broadcaster::UpdateListeners(const VtrString& property) {
  Listeners().UpdateListeners(property);
}

std::uint64_t Broadcaster::GetNumRegistered(const VtrString& property) const {
  return Listeners().GetNumRegistered(property);
}

bool Broadcaster::AreListenersAvailable(const VtrString& property) const {
  WListenersImpl* const existing = Existing();
  return existing != nullptr && existing->AreListenersAvailable(property);
}

std::vector<VtrString> Broadcaster::GetRegisteredProperties() const {
  WListenersImpl* const existing = Existing();
  if (existing == nullptr) return {};
  return existing->GetRegisteredProperties();
}

}  // namespace details

IBroadcaster::IBroadcaster(const IBroadcaster& other) noexcept = default;
IBroadcaster& IBroadcaster::operator=(const IBroadcaster& other) noexcept = default;

Subscription IBroadcaster::Register(const RepeatingCallback<void()>& callback,
                                    const VtrString& property) {
  return broadcaster.Register(callback, property);
}

Subscription IBroadcaster::RegisterOnce(OneShotCallback<void()> callback,
                                        const VtrString& property) {
  return details::CallOnce(std::move(callback), [&](const RepeatingCallback<void()>& once) {
    return Register(once, property);
  });
}

Subscription IBroadcaster::RegisterAny(
    const RepeatingCallback<void(const VtrString& property)>& callback) {
  return broadcaster.RegisterAny(callback);
}

void IBroadcaster::UpdateListeners(const VtrString& property) {
  broadcaster.UpdateListeners(property);
}

bool IBroadcaster::AreListenersAvailable(const VtrString& property) const {
  return broadcaster.AreListenersAvailable(property);
}

std::vector<VtrString> IBroadcaster::GetRegisteredProperties() const {
  return broadcaster.GetRegisteredProperties();
}

std::uint64_t IBroadcaster::GetNumRegistered(const VtrString& property) const {
  return broadcaster.GetNumRegistered(property);
}

}  // namespace DataBinding

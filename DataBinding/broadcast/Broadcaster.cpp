#include <utility>

#include "DataBinding/IBroadcaster.h"
#include "WListenersImpl.h"

namespace DataBinding {

namespace details {

Broadcaster::Broadcaster(const Broadcaster& other) noexcept : registry(other.registry) {
  if (registry != nullptr) registry->AddOwner();
}

Broadcaster& Broadcaster::operator=(const Broadcaster& other) noexcept {
  Broadcaster copy(other);
  std::swap(registry, copy.registry);
  return *this;
}

Broadcaster::~Broadcaster() {
  if (registry != nullptr) registry->DropOwner();
}

WListenersImpl& Broadcaster::Listeners() const {
  if (registry == nullptr) registry = new WListenersImpl;
  return *registry;
}

Subscription Broadcaster::Register(const RepeatingCallback<void()>& callback,
                                   const VtrString& property) {
  return Listeners().Register(callback, property);
}

void Broadcaster::UpdateListeners(const VtrString& property) {
  Listeners().UpdateListeners(property);
}

std::uint64_t Broadcaster::GetNumRegistered(const VtrString& property) const {
  return Listeners().GetNumRegistered(property);
}

bool Broadcaster::AreListenersAvailable(const VtrString& property) const {
  return registry != nullptr && registry->AreListenersAvailable(property);
}

std::vector<VtrString> Broadcaster::GetRegisteredProperties() const {
  if (registry == nullptr) return {};
  return registry->GetRegisteredProperties();
}

}  // namespace details

IBroadcaster::IBroadcaster() noexcept = default;
IBroadcaster::IBroadcaster(const IBroadcaster& other) noexcept = default;
IBroadcaster& IBroadcaster::operator=(const IBroadcaster& other) noexcept = default;
IBroadcaster::~IBroadcaster() = default;

Subscription IBroadcaster::Register(const RepeatingCallback<void()>& callback,
                                    const VtrString& property) {
  return broadcaster.Register(callback, property);
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

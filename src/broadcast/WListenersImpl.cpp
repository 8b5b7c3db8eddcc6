// SPDX-License-Identifier: Apache-2.0
// This file holds what the registry does: subscriptions, a broadcast's run, registering, removing,
// waiting and pausing, the report of a run, the questions, and the end of the registry.
#include "WListenersImpl.h"

#include <array>
#include <optional>
#include <utility>

#include "Broadcast.h"
#include "DataBinding/foundation/details/Registration.h"
#include "ListenerPin.h"

namespace DataBinding::details {

namespace {

/// A PropertyRegistration is the state behind a property's Subscription.
class PropertyRegistration final : public RegistrationState<PropertyRegistration> {
 public:
  explicit PropertyRegistration(WListenersImpl& itsRegistry) noexcept : registry(itsRegistry) {
    registry.AddKeeper();
  }
  ~PropertyRegistration() { registry.DropKeeper(); }

  void Set(const Registered& registered) noexcept { listener = registered; }

  void End() { registry.Remove(listener); }
  void EndAndWait() { registry.RemoveAndWait(listener); }
  void Pause() { registry.Pause(listener, &ListenerArray::Pause); }
  void Resume() { registry.Pause(listener, &ListenerArray::Resume); }
  [[nodiscard]] bool IsGone() const noexcept { return !registry.HasOwner(); }

 private:
  WListenersImpl& registry;
  Registered listener;
};

}  // namespace

Subscription WListenersImpl::Register(const RepeatingCallback<void()>& callback,
                                      const VtrString& property) {
  return Add(callback, &property);
}

Subscription WListenersImpl::RegisterAny(
    const RepeatingCallback<void(const VtrString&)>& callback) {
  return Add(callback, nullptr);
}

/// Registers a callback for a property, or for any property where that is null.
Subscription WListenersImpl::Add(const RepeatingCallbackBase& callback, const VtrString* property) {
  auto* registration = new PropertyRegistration(*this);
  OneShotCallback<void()> unsubscribe{comlike_ptr<BindStateBase>(registration)};
  ListenerArrayPtr replaced;
  {
    const RegistryWriteLock guard(lock);
    PropertyEntry& entry = EntryOf(property);
    MakeRoom(entry, replaced);
    entry.array->Append(++lastListenerId, callback);
    registration->Set({&entry, lastListenerId});
  }
  return Subscription(std::move(unsubscribe));
}

/// Returns the entry of a property, or of any property, and makes what it lacks.
PropertyEntry& WListenersImpl::EntryOf(const VtrString* property) {
  if (property != nullptr) {
    PropertyEntry* const entry = properties.Find(*property);
    return entry != nullptr ? *entry : properties.Insert(*property);
  }
  if (any.array == nullptr) any.array.reset(ListenerArray::Make({}, 1));
  isAnyHeard.store(true, std::memory_order_relaxed);
  return any;
}

/// Takes the array of an entry without listeners, which leaves the table.
ListenerArrayPtr WListenersImpl::TakeArray(PropertyEntry& entry) noexcept {
  if (&entry != &any) return properties.Extract(entry);
  isAnyHeard.store(false, std::memory_order_relaxed);
  return std::move(any.array);
}

void WListenersImpl::MakeRoom(PropertyEntry& entry, ListenerArrayPtr& replaced) {
  if (!entry.array->IsFull()) return;
  const bool running = ListenerPin::HandOver(*entry.array, *this) != 0;
  if (!running && entry.array->Live() <= entry.array->Count() / 2) {
    entry.array->CloseHoles();
    return;
  }
  replaced.reset(entry.array->Grown(running));
  std::swap(replaced, entry.array);
  if (running) Retire(replaced);
}

void WListenersImpl::Remove(Registered& listener) {
  Removed removed;
  const RegistryWriteLock guard(lock);
  if (IsRegistered(listener)) removed = TakeOut(listener);
}

WListenersImpl::Removed WListenersImpl::TakeOut(Registered& listener) noexcept {
  Removed removed;
  PropertyEntry& entry = *std::exchange(listener.entry, nullptr);
  const bool running = ListenerPin::HandOver(*entry.array, *this) != 0;
  if (running) {
    entry.array->MarkRemoved(listener.id);
  } else {
    removed.state = entry.array->TakeOut(listener.id);
  }
  if (entry.array->Live() != 0) return removed;
  removed.array = TakeArray(entry);
  if (running) Retire(removed.array);
  return removed;
}

void WListenersImpl::RemoveAndWait(Registered& listener) {
  Place place = Silence(listener);
  const bool fenced = ReaderRecord::FenceOthers();
  if (place.array == nullptr) place = KeepWhereCalled(listener.id, fenced);
  for (; place.array != nullptr; place = KeepWhereCalled(listener.id, fenced)) {
    WaitWhile([&] { return ListenerPin::IsCalledElsewhere(*place.array, place.position, fenced); });
    Report(*place.array);
  }
}

/// Makes sure that no call of the listener begins any more. If the listener is still registered,
/// ends the registration and keeps its property's array, in which a call may be under way.
WListenersImpl::Place WListenersImpl::Silence(Registered& listener) {
  Removed removed;
  const RegistryWriteLock guard(lock);
  ChangeInAll(listener, &ListenerArray::Silence);
  if (!IsRegistered(listener)) return {};
  const Place place = Keep(*listener.entry->array, listener.id);
  removed = TakeOut(listener);
  return place;
}

/// Finds a retired array in which another thread is calling the listener, and keeps it.
WListenersImpl::Place WListenersImpl::KeepWhereCalled(std::uint64_t id, bool fenced) noexcept {
  const RegistryWriteLock guard(lock);
  for (auto* array = retired; array != nullptr; array = array->nextRetired) {
    const auto position = array->Find(id);
    if (position == array->Count()) continue;
    if (ListenerPin::IsCalledElsewhere(*array, position, fenced)) return Keep(*array, id);
  }
  return {};
}

WListenersImpl::Place WListenersImpl::Keep(ListenerArray& array, std::uint64_t id) noexcept {
  ExpectReport(array);
  return {&array, array.Find(id)};
}

/// Leaves an array that is being run to the last broadcast that reports.
void WListenersImpl::Retire(ListenerArrayPtr& array) noexcept {
  array->retired = true;
  array->nextRetired = retired;
  retired = array.release();
}

void WListenersImpl::Forget(const ListenerArray& ended) noexcept {
  ListenerArray** link = &retired;
  while (*link != &ended) link = &(*link)->nextRetired;
  *link = ended.nextRetired;
}

void WListenersImpl::Pause(Registered& listener, ListenerChange change) {
  const RegistryWriteLock guard(lock);
  if (listener.entry != nullptr) ChangeInAll(listener, change);
}

/// Changes the listener in each array that shows it: the array of its property, if the listener is
/// registered, and the retired arrays.
void WListenersImpl::ChangeInAll(const Registered& listener, ListenerChange change) noexcept {
  const auto changeIn = [&](ListenerArray& array) {
    const auto position = array.Find(listener.id);
    if (position != array.Count()) (array.*change)(position);
  };
  if (IsRegistered(listener)) changeIn(*listener.entry->array);
  for (auto* array = retired; array != nullptr; array = array->nextRetired) changeIn(*array);
}

void WListenersImpl::ExpectReport(ListenerArray& array) noexcept {
  array.reports.fetch_add(1, std::memory_order_relaxed);
  AddKeeper();
}

void WListenersImpl::Report(ListenerArray& array) noexcept {
  ListenerArrayPtr ended;
  for (bool more = true; more;) {
    std::array<comlike_ptr<const BindStateBase>, 16> released;
    const RegistryWriteLock guard(lock);
    if (!array.retired && ListenerPin::HandOver(array, *this) == 1) array.Sweep(released);
    more = static_cast<bool>(released.back());
    if (more) continue;
    const bool last = array.reports.fetch_sub(1, std::memory_order_acq_rel) == 1;
    if (!last || !array.retired) continue;
    Forget(array);
    ended.reset(&array);
  }
  ended.reset();
  DropKeeper();
}

void WListenersImpl::UpdateListeners(const VtrString& property) {
  if (isAnyHeard.load(std::memory_order_relaxed)) return UpdateWithAny(property);
  Broadcast broadcast;
  {
    ReaderRecord* record = ReaderRecord::Current();
    const RegistryReadLock guard(lock, record);
    PropertyEntry* entry = properties.Find(property);
    if (entry == nullptr) return;
    broadcast.Begin(*entry->array, *this, record);
  }
  broadcast.Run();
}

/// Runs the listeners of a property and then those to any. Both runs begin at once, so that both
/// show what was registered then. The first one has ended when the second one calls: a thread that
/// waits for the property's last listener shall not wait for others.
void WListenersImpl::UpdateWithAny(const VtrString& property) {
  const VtrString name = property;  // a listener may end the text
  BroadcastToAny toAny(name);
  std::optional<Broadcast> broadcast(std::in_place);
  {
    ReaderRecord* record = ReaderRecord::Current();
    const RegistryReadLock guard(lock, record);
    if (any.array != nullptr) toAny.Begin(*any.array, *this, record);
    PropertyEntry* entry = properties.Find(name);
    if (entry != nullptr) broadcast->Begin(*entry->array, *this, record);
  }
  broadcast->Run();
  broadcast.reset();
  toAny.Run();
}

bool WListenersImpl::AreListenersAvailable(const VtrString& property) {
  if (isAnyHeard.load(std::memory_order_relaxed)) return true;
  const RegistryReadLock guard(lock, ReaderRecord::Existing());
  return properties.Find(property) != nullptr;
}

std::uint64_t WListenersImpl::GetNumRegistered(const VtrString& property) {
  const RegistryReadLock guard(lock, ReaderRecord::Existing());
  const PropertyEntry* entry = properties.Find(property);
  return entry == nullptr ? 0 : entry->array->Live();
}

std::vector<VtrString> WListenersImpl::GetRegisteredProperties() {
  std::vector<VtrString> names;
  const RegistryReadLock guard(lock, ReaderRecord::Existing());
  names.reserve(properties.Size());
  properties.ForEach([&](const PropertyEntry& entry) { names.push_back(entry.Name()); });
  return names;
}

void WListenersImpl::DropOwner() noexcept {
  if (owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  Clear();
  DropKeeper();
}

void WListenersImpl::DropKeeper() noexcept {
  if (keepers.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void WListenersImpl::Clear() noexcept {
  ListenerArray* ended = nullptr;
  {
    const RegistryWriteLock guard(lock);
    // Clang's analysis does not see that the lock is held within the lambda.
    const auto letGo = [&](PropertyEntry& entry)
                           DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
                             if (ListenerPin::HandOver(*entry.array, *this) != 0) {
                               return Retire(entry.array);
                             }
                             entry.array->nextRetired = ended;
                             ended = entry.array.release();
                           };
    properties.ForEach(letGo);
    if (any.array != nullptr) letGo(any);
    properties.Clear();
    isEmptied = true;
  }
  while (ended != nullptr) {
    ListenerArray::Destroy(std::exchange(ended, ended->nextRetired));
  }
}

}  // namespace DataBinding::details

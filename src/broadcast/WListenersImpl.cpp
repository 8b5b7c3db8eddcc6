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

const BindStateBase::Traits WListenersImpl::traits{nullptr, nullptr, nullptr, &Handle};

WListenersImpl::WListenersImpl() noexcept : BindStateBase(nullptr, &Destroy, traits) {}

void WListenersImpl::Destroy(const BindStateBase* state) {
  delete static_cast<const WListenersImpl*>(state);
}

/// Handles the requests of Subscriptions and of what shares their registrations.
void WListenersImpl::Handle(const BindStateBase* state, RegistrationRequest request,
                            const RegistrationKey& key) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): callbacks share their states as const
  auto& self = const_cast<WListenersImpl&>(*static_cast<const WListenersImpl*>(state));
  const Registered listener{static_cast<PropertyEntry*>(key.place), key.id};
  switch (request) {
    case RegistrationRequest::End:
      return self.Remove(listener, false);
    case RegistrationRequest::Leave:
      return self.Remove(listener, true);
    case RegistrationRequest::EndAndWait:
      return self.RemoveAndWait(listener);
    case RegistrationRequest::Pause:
      return self.Pause(listener, &ListenerArray::Pause);
    case RegistrationRequest::Resume:
      return self.Pause(listener, &ListenerArray::Resume);
  }
}

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
  ListenerArrayPtr replaced;
  const RegistryWriteLock guard(lock);
  PropertyEntry& entry = EntryOf(property);
  MakeRoom(entry, replaced);
  entry.array->Append(++lastListenerId, callback);
  if (subscriptions++ == 0) AddRef();
  return Subscription(*this, {&entry, lastListenerId});
}

/// Returns the entry of a property, or of any property, and makes what it lacks.
PropertyEntry& WListenersImpl::EntryOf(const VtrString* property) {
  if (property != nullptr) {
    PropertyEntry* const entry = properties.Find(*property);
    return entry != nullptr ? *entry : properties.Insert(*property);
  }
  if (any.array == nullptr) any.array.reset(ListenerArray::Make({}, 1));
  return any;
}

/// Takes the array of an entry without listeners, which leaves the table.
ListenerArrayPtr WListenersImpl::TakeArray(PropertyEntry& entry) noexcept {
  return &entry == &any ? std::move(any.array) : properties.Extract(entry);
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

void WListenersImpl::Remove(const Registered& listener, bool bySubscription) {
  Removed removed;
  bool wasLast = false;
  {
    const RegistryWriteLock guard(lock);
    if (const auto position = Find(listener)) removed = TakeOut(*listener.entry, *position);
    wasLast = bySubscription && --subscriptions == 0;
  }
  if (wasLast) Release();
}

/// Returns the position of the listener in its property's array, where it may be registered or be
/// removed already.
std::optional<std::uint32_t> WListenersImpl::Find(const Registered& listener) const noexcept {
  if (isEmptied || listener.entry->array == nullptr) return std::nullopt;
  const ListenerArray& array = *listener.entry->array;
  const auto position = array.Find(listener.id);
  return position != array.Count() ? std::optional(position) : std::nullopt;
}

/// Takes out a listener that is registered. Does nothing to one that is removed already.
WListenersImpl::Removed WListenersImpl::TakeOut(PropertyEntry& entry,
                                                std::uint32_t position) noexcept {
  Removed removed;
  if (!entry.array->IsRegistered(position)) return removed;
  const bool running = ListenerPin::HandOver(*entry.array, *this) != 0;
  if (running) {
    entry.array->MarkRemoved(position);
  } else {
    removed.state = entry.array->TakeOut(position);
  }
  if (entry.array->Live() != 0) return removed;
  removed.array = TakeArray(entry);
  if (running) Retire(removed.array);
  return removed;
}

void WListenersImpl::RemoveAndWait(const Registered& listener) {
  Place place = Silence(listener);
  const bool fenced = ReaderRecord::FenceOthers();
  if (place.array == nullptr) place = KeepWhereCalled(listener.id, fenced);
  for (; place.array != nullptr; place = KeepWhereCalled(listener.id, fenced)) {
    WaitWhile([&] { return ListenerPin::IsCalledElsewhere(*place.array, place.position, fenced); });
    Report(*place.array);
  }
}

/// Makes sure that no call of the listener begins any more, and ends its registration. If the
/// listener stands in its property's array, keeps this, since a call may be under way there.
WListenersImpl::Place WListenersImpl::Silence(const Registered& listener) {
  Removed removed;
  const RegistryWriteLock guard(lock);
  ChangeInAll(listener, &ListenerArray::Silence);
  const auto position = Find(listener);
  if (!position) return {};
  const Place place = Keep(*listener.entry->array, *position);
  removed = TakeOut(*listener.entry, *position);
  return place;
}

/// Finds a retired array in which another thread is calling the listener, and keeps it.
WListenersImpl::Place WListenersImpl::KeepWhereCalled(std::uint64_t id, bool fenced) noexcept {
  const RegistryWriteLock guard(lock);
  for (auto* array = retired; array != nullptr; array = array->nextRetired) {
    const auto position = array->Find(id);
    if (position == array->Count()) continue;
    if (ListenerPin::IsCalledElsewhere(*array, position, fenced)) return Keep(*array, position);
  }
  return {};
}

WListenersImpl::Place WListenersImpl::Keep(ListenerArray& array, std::uint32_t position) noexcept {
  ExpectReport(array);
  return {&array, position};
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

void WListenersImpl::Pause(const Registered& listener, ListenerChange change) {
  const RegistryWriteLock guard(lock);
  ChangeInAll(listener, change);
}

/// Changes the listener in each array that shows it: the array of its property, and the retired
/// arrays.
void WListenersImpl::ChangeInAll(const Registered& listener, ListenerChange change) noexcept {
  if (const auto position = Find(listener)) (*listener.entry->array.*change)(*position);
  for (auto* array = retired; array != nullptr; array = array->nextRetired) {
    const auto position = array->Find(listener.id);
    if (position != array->Count()) (array->*change)(position);
  }
}

void WListenersImpl::ExpectReport(ListenerArray& array) noexcept {
  array.reports.fetch_add(1, std::memory_order_relaxed);
  AddRef();
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
  Release();
}

void WListenersImpl::UpdateListeners(const VtrString& property) {
  Broadcast broadcast;
  bool isAnyHeard = false;
  {
    ReaderRecord* record = ReaderRecord::Current();
    const RegistryReadLock guard(lock, record);
    isAnyHeard = any.array != nullptr;
    PropertyEntry* const entry = isAnyHeard ? nullptr : properties.Find(property);
    if (entry != nullptr) broadcast.Begin(*entry->array, *this, record);
  }
  if (isAnyHeard) return UpdateWithAny(property);
  broadcast.Run();
}

/// Runs the listeners of a property and then those to any. Both runs begin at once, so that both
/// show what was registered then. The first one has ended when the second one calls: a thread that
/// waits for the property's last listener shall not wait for others.
void WListenersImpl::UpdateWithAny(const VtrString& property) {
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): a listener may end the text
  const VtrString name = property;
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
  const RegistryReadLock guard(lock, ReaderRecord::Existing());
  return any.array != nullptr || properties.Find(property) != nullptr;
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
  // The only owner need not count down, since none can come while it ends.
  if (owners.load(std::memory_order_acquire) != 1 &&
      owners.fetch_sub(1, std::memory_order_acq_rel) != 1) {
    return;
  }
  Clear();
  Release();
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

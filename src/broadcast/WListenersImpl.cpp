// SPDX-License-Identifier: Apache-2.0
// This file holds what the registry does: subscriptions, a broadcast's run, registering, removing,
// waiting and pausing, the report of a run, the questions, and the end of the registry.
#include "WListenersImpl.h"

#include <array>
#include <utility>

#include "DataBinding/foundation/details/Registration.h"
#include "GuardedRun.h"
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

/// A Broadcast is one run of a property's listeners. It remembers what the array showed when the
/// run began.
class Broadcast {
 public:
  /// The caller holds the registry's lock.
  void Begin(ListenerArray& array, WListenersImpl& registry, ReaderRecord* record) noexcept {
    loop = array.Loop();
    count = array.Count();
    lastRemoval = array.LastRemoval();
    skipsRemoved = array.HasRemoved();
    pin.Take(array, registry, record);
  }
  void Run() {
    if (const ListenerArray* array = pin.Get()) {
      RunGuarded(skipsRemoved ? &StepOverRemoved : &Step, this, array->Property());
    }
  }

 private:
  /// Both steps store the next position before they call a listener, so that a listener which
  /// throws or faults counts as called. An array without removed listeners needs no look at the
  /// marks, which makes the first step faster.
  static void Step(void* context) {
    auto& self = *static_cast<Broadcast*>(context);
    auto& next = self.pin.Next();
    if (next.load(std::memory_order_relaxed) == self.count) return;
    self.loop(self.pin.Get()->Listeners(), &next, self.count);
  }
  static void StepOverRemoved(void* context) {
    auto& self = *static_cast<Broadcast*>(context);
    const ListenerArray& array = *self.pin.Get();
    auto& next = self.pin.Next();
    for (std::uint32_t i = next.load(std::memory_order_relaxed); i < self.count; ++i) {
      const auto removal = array.Marks()[i].removal.load(std::memory_order_relaxed);
      next.store(i, std::memory_order_release);
      if (removal > self.lastRemoval) self.loop(array.Listeners(), &next, i + 1);
    }
  }

  ListenerPin pin;
  BindStateBase::CallLoop loop = nullptr;
  std::uint32_t count = 0;
  std::uint64_t lastRemoval = 0;
  bool skipsRemoved = false;
};

}  // namespace

Subscription WListenersImpl::Register(const RepeatingCallback<void()>& callback,
                                      const VtrString& property) {
  auto* registration = new PropertyRegistration(*this);
  OneShotCallback<void()> unsubscribe{comlike_ptr<BindStateBase>(registration)};
  ListenerArrayPtr replaced;
  {
    const RegistryWriteLock guard(lock);
    PropertyEntry* entry = properties.Find(property);
    if (entry == nullptr) entry = &properties.Insert(property);
    MakeRoom(*entry, replaced);
    entry->array->Append(++lastListenerId, callback);
    registration->Set({entry, lastListenerId});
  }
  return Subscription(std::move(unsubscribe));
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
  removed.entry = properties.Extract(entry);
  if (running) Retire(removed.entry->array);
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

bool WListenersImpl::AreListenersAvailable(const VtrString& property) {
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
  const auto takeAll = [this] {
    const RegistryWriteLock guard(lock);
    // Clang's analysis does not see that the lock is held within the lambda.
    properties.ForEach([this](PropertyEntry& entry)
                           DATABINDING_THREAD_ANNOTATION(no_thread_safety_analysis) {
                             if (ListenerPin::HandOver(*entry.array, *this) != 0)
                               Retire(entry.array);
                           });
    isEmptied = true;
    return std::move(properties);
  };
  const PropertyTable ended = takeAll();
}

}  // namespace DataBinding::details

#include "WListenersImpl.h"

#include <array>
#include <typeinfo>
#include <utility>

#include "GuardedRun.h"
#include "ListenerPin.h"

namespace DataBinding::details {

namespace {

/// The state of the callback that a Subscription holds: ends one registration.
class Removal final : public BindStateBase {
 public:
  explicit Removal(WListenersImpl& owner)
      : BindStateBase(reinterpret_cast<InvokeFunction>(&Run), &Destroy, &Ask), registry(owner) {
    SetSignature(typeid(void()));
    registry.AddKeeper();
  }

  void Set(PropertyEntry& registered, std::uint64_t listenerId) noexcept {
    entry = &registered;
    id = listenerId;
  }

 private:
  ~Removal() { registry.DropKeeper(); }

  static const Removal& Of(const BindStateBase* state) noexcept {
    return *static_cast<const Removal*>(state);
  }
  static void Run(const BindStateBase* state) {
    const Removal& self = Of(state);
    if (self.entry == nullptr || !self.registry.TryAddOwner()) return;
    self.registry.Remove(*self.entry, self.id);
    self.registry.DropOwner();
  }
  static void Destroy(const BindStateBase* state) { delete &Of(state); }
  static bool Ask(const BindStateBase* state, CancellationQueryMode mode) {
    return Of(state).registry.HasOwner() == (mode == CancellationQueryMode::MaybeValid);
  }

  WListenersImpl& registry;
  PropertyEntry* entry = nullptr;
  std::uint64_t id = 0;
};

/// One announcement: what it runs, and how far it has come.
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
  /// Both steps move on before they call out: a listener that throws or faults counts as done.
  static void Step(void* context) {
    auto& self = *static_cast<Broadcast*>(context);
    self.loop(self.pin.Get()->Listeners(), &self.next, self.count);
  }
  static void StepOverRemoved(void* context) {
    auto& self = *static_cast<Broadcast*>(context);
    const ListenerArray& array = *self.pin.Get();
    for (std::uint32_t i = self.next; i < self.count; ++i) {
      self.next = i + 1;
      const auto removal = array.Marks()[i].removal.load(std::memory_order_relaxed);
      if (removal > self.lastRemoval) array.Listeners()[i].run(array.Listeners()[i].state);
    }
  }

  ListenerPin pin;
  BindStateBase::CallLoop loop = nullptr;
  std::uint32_t count = 0;
  std::uint32_t next = 0;
  std::uint64_t lastRemoval = 0;
  bool skipsRemoved = false;
};

/// Leaves a running array to the last broadcast that reports. The caller holds the write lock.
void Retire(ListenerArrayPtr& array) noexcept { array.release()->retired = true; }

}  // namespace

Subscription WListenersImpl::Register(const RepeatingCallback<void()>& callback,
                                      const VtrString& property) {
  auto* removal = new Removal(*this);
  OneShotCallback<void()> unsubscribe{comlike_ptr<BindStateBase>(removal)};
  ListenerArrayPtr replaced;
  {
    const RegistryWriteLock guard(lock);
    PropertyEntry* entry = properties.Find(property);
    if (entry == nullptr) entry = &properties.Insert(property);
    MakeRoom(*entry, replaced);
    entry->array->Append(++lastListenerId, callback);
    removal->Set(*entry, lastListenerId);
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

void WListenersImpl::Remove(PropertyEntry& entry, std::uint64_t id) {
  comlike_ptr<const BindStateBase> released;
  std::unique_ptr<PropertyEntry> ended;
  const RegistryWriteLock guard(lock);
  const bool running = ListenerPin::HandOver(*entry.array, *this) != 0;
  if (running) {
    entry.array->MarkRemoved(id);
  } else {
    released = entry.array->TakeOut(id);
  }
  if (entry.array->Live() != 0) return;
  ended = properties.Extract(entry);
  if (running) Retire(ended->array);
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
    if (last && array.retired) ended.reset(&array);
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

bool WListenersImpl::TryAddOwner() noexcept {
  auto count = owners.load(std::memory_order_relaxed);
  while (count != 0) {
    if (owners.compare_exchange_weak(count, count + 1, std::memory_order_acq_rel)) return true;
  }
  return false;
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
    properties.ForEach([this](PropertyEntry& entry) {
      if (ListenerPin::HandOver(*entry.array, *this) != 0) Retire(entry.array);
    });
    return std::move(properties);
  };
  const PropertyTable ended = takeAll();
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
// This file holds the table of members, and the calls of the destruction handlers at its end. While
// there is no map, names are looked up in the chain of members, the newest first.
#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <unordered_map>

#include "DataBinding/foundation/Event.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/foundation/details/NameMap.h"
#include "DataBinding/reflection/IReflectable.h"
#include "DataBinding/reflection/details/ChainedMember.h"

namespace DataBinding::details {

namespace {

constexpr std::size_t notFound = std::numeric_limits<std::size_t>::max();

/// A longer chain would be slower to look through than a map.
constexpr std::uint32_t longestChainWithoutMap = 16;

constinit thread_local HandlerFailures* innermostFailures = nullptr;
constinit thread_local const Reflectable* lending = nullptr;
constinit thread_local const FilingScope* innermostFiling = nullptr;

/// Calls all handlers and notes the first exception, since a destructor cannot let one out.
void RaiseQuietly(Event<void()>& event) noexcept {
  try {
    event.RaiseEach(&HandlerFailures::NoteCurrent);
  } catch (...) {
    HandlerFailures::NoteCurrent();
  }
}

}  // namespace

HandlerFailures::HandlerFailures() noexcept : outer(std::exchange(innermostFailures, this)) {}
HandlerFailures::~HandlerFailures() { innermostFailures = outer; }

void HandlerFailures::NoteCurrent() noexcept {
  if (innermostFailures == nullptr || innermostFailures->first != nullptr) return;
  innermostFailures->first = std::current_exception();
}

void HandlerFailures::RethrowFirst() const {
  if (first != nullptr) std::rethrow_exception(first);
}

LendingScope::LendingScope(const Reflectable& table) noexcept
    : before(std::exchange(lending, &table)) {}
LendingScope::~LendingScope() { lending = before; }

FilingScope::FilingScope(const ChainedMember& member, const runtime_type_base& type) noexcept
    : filed(&member), filedType(&type), outer(std::exchange(innermostFiling, this)) {}
FilingScope::~FilingScope() { innermostFiling = outer; }

bool FilingScope::IsTypeOf(const ChainedMember& member, const runtime_type_base& type) {
  const FilingScope* const filing = innermostFiling;
  const bool isKnown = filing != nullptr && filing->filed == &member && filing->filedType == &type;
  return isKnown || AreSameType(type, member.Type());
}

/// The map with the order in which its names were added.
struct MemberMap {
  using Links = std::unordered_map<const ChainedMember*, ChainedMember*>;

  /// Returns the item of a name, which is made if there is none.
  Reflectable::ReflectedItem& Item(const VtrString& name) {
    if (inOrder.size() == inOrder.capacity()) inOrder.reserve(2 * inOrder.size() + 8);
    const auto [place, isNew] = items.try_emplace(name);
    if (isNew) inOrder.push_back(&place->first);
    return place->second;
  }

  /// Leaves the name and the type of a member that ends.
  void MarkGone(const ChainedMember& member) noexcept;
  /// Takes a member out of `newer`, to which `older` is the next in the chain, or null.
  void Unlink(const ChainedMember& member, const ChainedMember* older) noexcept {
    const auto link = newer.extract(&member);
    if (older == nullptr) return;
    if (link.empty()) {
      newer.erase(older);
    } else {
      newer.find(older)->second = link.mapped();
    }
  }

  Reflectable::Items items;
  std::vector<const VtrString*> inOrder;
  /// Leads from each chained member to the one that was filed after it, so that a member leaves a
  /// long chain without a walk.
  Links newer;
};

namespace {

/// The accessor of a property that has gone. No callback has its signature, and it counts as
/// cancelled.
class GoneState final : public BindStateBase {
 public:
  static RepeatingCallbackMemento Memento() noexcept {
    alignas(GoneState) static std::byte place[sizeof(GoneState)];
    static auto* const everlasting = ::new (static_cast<void*>(place)) GoneState;
    return RepeatingCallbackBase(comlike_ptr<BindStateBase>::Share(everlasting)).GetMemento();
  }

 private:
  GoneState() noexcept : BindStateBase([] {}, [](const BindStateBase*) {}, traits) {}
  static const std::type_info& Signature() noexcept { return typeid(GoneState); }
  static bool Answer(const BindStateBase* /*state*/, CancellationQueryMode mode) {
    return mode == CancellationQueryMode::IsCancelled;
  }
  static constexpr Traits traits{&Answer, &Signature, nullptr, nullptr};
};

/// Takes the delegate out of an item, unless it is only lent. It is released when the item is new
/// already, since its end may run any code.
RepeatingCallbackMemento TakeOwned(Reflectable::ReflectedItem& item) {
  if (item.delegate.Lender() != nullptr) return RepeatingCallbackMemento();
  return std::move(item.delegate);
}

/// Puts what was made into an empty place, unless another thread was faster. Returns what is there.
template <class T>
T& Publish(std::atomic<T*>& place, std::unique_ptr<T> made) noexcept {
  T* existing = nullptr;
  if (!place.compare_exchange_strong(existing, made.get(), std::memory_order_acq_rel)) {
    return *existing;
  }
  return *made.release();
}

}  // namespace

void MemberMap::MarkGone(const ChainedMember& member) noexcept {
  const auto found = items.find(member.Name());
  const bool isFiled = found != items.end() && found->second.delegate.Lender() == &member;
  if (isFiled) found->second.delegate = GoneState::Memento();
}

/// Holds what few objects have.
struct ReflectableExtras {
  ReflectableExtras() = default;
  ReflectableExtras(const ReflectableExtras&) = delete;
  ReflectableExtras& operator=(const ReflectableExtras&) = delete;
  ~ReflectableExtras() { delete map.exchange(nullptr, std::memory_order_relaxed); }

  Event<void()> onDestroy;
  Event<void()> onDestroyed;
  Reflectable::DelegateResolver resolveDelegate;
  Reflectable::TypeResolver resolveType;
  std::atomic<MemberMap*> map{nullptr};
};

/// Known is the answer of a look-up: the type of the name, and its living chained member or else
/// its delegate. All are null for a name that is not in the table.
struct Reflectable::Known {
  const runtime_type_base* type = nullptr;
  ChainedMember* member = nullptr;
  const RepeatingCallbackMemento* delegate = nullptr;
};

Reflectable::Reflectable(DelegateResolver forDelegates, TypeResolver forTypes) {
  ReflectableExtras& made = Extras();
  made.resolveDelegate = std::move(forDelegates);
  made.resolveType = std::move(forTypes);
}

Reflectable::~Reflectable() {
  isEnding = true;
  const std::unique_ptr<ReflectableExtras> ended(extras.load(std::memory_order_acquire));
  if (ended != nullptr) {
    RaiseQuietly(ended->onDestroy);
    RaiseQuietly(ended->onDestroyed);
  }
  // A property may outlive its source, and must not look for it when it ends.
  while (newest != nullptr) newest = std::exchange(newest->older, newest);
}

ReflectableExtras& Reflectable::Extras() const {
  ReflectableExtras* const existing = extras.load(std::memory_order_acquire);
  return existing != nullptr ? *existing : Publish(extras, std::make_unique<ReflectableExtras>());
}

MemberMap* Reflectable::ExistingMap() const noexcept {
  const ReflectableExtras* const existing = extras.load(std::memory_order_acquire);
  return existing == nullptr ? nullptr : existing->map.load(std::memory_order_acquire);
}

MemberMap& Reflectable::Map() const {
  if (MemberMap* const existing = ExistingMap()) return *existing;
  auto made = std::make_unique<MemberMap>();
  ChainedMember* newer = nullptr;
  for (ChainedMember* member = newest; member != nullptr; member = member->older) {
    if (newer != nullptr) made->newer.emplace(member, newer);
    newer = member;
    if (made->items.contains(member->Name())) continue;
    ReflectedItem& item = made->Item(member->Name());
    item.type = member->Type();
    item.delegate.Lend(*member);
  }
  std::ranges::reverse(made->inOrder);
  return Publish(Extras().map, std::move(made));
}

void Reflectable::ReserveNames() const { static_cast<void>(Map()); }

void Reflectable::_AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                               const runtime_type_base& type) {
  // Nothing else lends to a table.
  auto* const member = static_cast<ChainedMember*>(delegate.Lender());
  const bool isOwn = member != nullptr && &member->Home() == object && !member->IsChained() &&
                     member->Name() == name && FilingScope::IsTypeOf(*member, type);
  return isOwn ? Link(*member) : AddByHand(name, delegate, type);
}

void Reflectable::AddByHand(const VtrString& name, const RepeatingCallbackMemento& delegate,
                            const runtime_type_base& type) {
  RepeatingCallbackMemento own = delegate;
  ReflectedItem& item = Map().Item(name);
  const RepeatingCallbackMemento former = TakeOwned(item);
  item.delegate = std::move(own);
  item.type = type;
}

void Reflectable::Link(ChainedMember& member) {
  const bool needsMap = chained == longestChainWithoutMap || ExistingMap() != nullptr;
  return needsMap ? LinkInMap(member) : Chain(member);
}

void Reflectable::LinkInMap(ChainedMember& member) {
  MemberMap& map = Map();
  MemberMap::Links link;
  if (newest != nullptr) link.emplace(newest, &member);
  ReserveOneMore(map.newer);
  ReflectedItem& item = map.Item(member.Name());
  const RepeatingCallbackMemento former = TakeOwned(item);
  item.type = member.Type();
  item.delegate.Lend(member);
  map.newer.merge(link);
  Chain(member);
}

void Reflectable::Chain(ChainedMember& member) noexcept {
  member.older = std::exchange(newest, &member);
  ++chained;
}

void Reflectable::Unlink(ChainedMember& member) noexcept {
  if (!member.IsChained()) return;
  if (!wholeEnds) KeepNames();
  return ExistingMap() == nullptr ? Unchain(member, newest) : UnlinkInMap(member);
}

void Reflectable::UnlinkInMap(ChainedMember& member) noexcept {
  MemberMap& map = *ExistingMap();
  const auto newer = map.newer.find(&member);
  ChainedMember*& place = newer == map.newer.end() ? newest : newer->second->older;
  Unchain(member, place);
  map.MarkGone(member);
  map.Unlink(member, place);
}

/// Takes a member out of the chain, to which `first` leads directly or by way of others.
void Reflectable::Unchain(ChainedMember& member, ChainedMember*& first) noexcept {
  ChainedMember** place = &first;
  while (*place != &member) place = &(*place)->older;
  *place = std::exchange(member.older, &member);
  --chained;
}

void Reflectable::KeepNames() const noexcept {
  FirstFailure dropped;  // without memory the name is forgotten
  dropped.Try([this] { ReserveNames(); });
}

void Reflectable::_AddType(const VtrString& name, const runtime_type_base& type) {
  _AddDelegate(name, RepeatingCallbackMemento(), type);
}

Reflectable::Known Reflectable::Look(const VtrString& name) const {
  if (const MemberMap* const map = ExistingMap()) {
    const auto found = map->items.find(name);
    if (found == map->items.end()) return {};
    const ReflectedItem& item = found->second;
    auto* const member = static_cast<ChainedMember*>(item.delegate.Lender());
    return {&item.type.get(), member, &item.delegate};
  }
  // Names of one class are often of one length, so their hashes, which are kept, are compared
  // first.
  const auto hash = name.GetSamplingHash();
  for (ChainedMember* member = newest; member != nullptr; member = member->older) {
    const bool isNamed = member->Name().GetSamplingHash() == hash && member->Name() == name;
    if (isNamed) return {&member->Type(), member, nullptr};
  }
  return {};
}

ChainedMember* Reflectable::FindChained(const VtrString& name) const { return Look(name).member; }

RepeatingCallbackMemento Reflectable::ResolveDelegate(const VtrString& name,
                                                      const runtime_type_base& type) const {
  return object != nullptr ? object->GetDynamicDelegate(name, type)
                           : Extras().resolveDelegate(name, type);
}

const runtime_type_base& Reflectable::ResolveType(const VtrString& name) const {
  if (object != nullptr) return object->GetDynamicType(name);
  const TypeResolver& resolve = Extras().resolveType;
  return resolve ? resolve(name) : runtime_type<void>::Get();
}

std::pair<std::size_t, RepeatingCallbackMemento> Reflectable::_GetDelegate(
    std::initializer_list<DelegateTag> tags) const {
  // This is returned in place: a lent callback stays lent only while it is not copied or moved.
  std::pair<std::size_t, RepeatingCallbackMemento> answer(0, RepeatingCallbackMemento());
  for (const auto& [name, type] : tags) {
    const Known known = Look(name);
    if (known.type != nullptr) {
      if (!AreSameType(type, *known.type)) return answer;
      if (known.member == nullptr) {
        answer.second = *known.delegate;
      } else {
        answer.second.Lend(*known.member);
        if (lending != this) answer.second = RepeatingCallbackMemento(answer.second);
      }
      return answer;
    }
    answer.second = ResolveDelegate(name, type);
    if (!answer.second.IsEmpty()) return answer;
    ++answer.first;
  }
  answer.first = notFound;
  return answer;
}

std::pair<std::size_t, const runtime_type_base&> Reflectable::_GetType(
    std::initializer_list<VtrString> names) const {
  const runtime_type_base& none = runtime_type<void>::Get();
  std::size_t index = 0;
  for (const auto& name : names) {
    const Known known = Look(name);
    if (known.type != nullptr) return {index, *known.type};
    const runtime_type_base& resolved = ResolveType(name);
    if (!resolved.IsSameType(&none)) return {index, resolved};
    ++index;
  }
  return {notFound, none};
}

std::vector<VtrString> Reflectable::NamesInOrder() const {
  std::vector<VtrString> names;
  if (const MemberMap* const map = ExistingMap()) {
    names.reserve(map->inOrder.size());
    for (const VtrString* name : map->inOrder) names.push_back(*name);
    return names;
  }
  for (ChainedMember* member = newest; member != nullptr; member = member->older) {
    if (FindChained(member->Name()) == member) names.push_back(member->Name());
  }
  std::ranges::reverse(names);
  return names;
}

Subscription Reflectable::AddOnDestroyHandler(const RepeatingCallback<void()>& callback) {
  ReserveNames();
  return Extras().onDestroy.Subscribe(callback.GetMemento());
}

Subscription Reflectable::AddOnDestroyedHandler(const RepeatingCallback<void()>& callback) {
  ReserveNames();
  return Extras().onDestroyed.Subscribe(callback.GetMemento());
}

bool Reflectable::IsProperty(const VtrString& name) const {
  return !_GetType({name}).second.IsFunction();
}

bool Reflectable::IsWritableProperty(const VtrString& name) const {
  const runtime_type_base& type = _GetType({name}).second;
  return !type.IsFunction() && !type.IsReadOnly();
}

Reflectable::Items::iterator Reflectable::begin() { return Map().items.begin(); }
Reflectable::Items::const_iterator Reflectable::begin() const { return Map().items.begin(); }
Reflectable::Items::iterator Reflectable::end() { return Map().items.end(); }
Reflectable::Items::const_iterator Reflectable::end() const { return Map().items.end(); }

}  // namespace DataBinding::details

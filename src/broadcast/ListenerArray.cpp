// SPDX-License-Identifier: Apache-2.0
// This file holds how an array stores its listeners: memory, appending, growing, pausing, removing
// with and without a pin, and sweeping. The caller decides which of these the pins allow.
#include "ListenerArray.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace DataBinding::details {

namespace {

/// Stands at holes, at null callbacks and at silenced listeners, so that a broadcast can call every
/// position without a question.
void RunNothing(const BindStateBase* /*state*/) {}

Listener::Function Function(const BindStateBase& state) noexcept {
  return reinterpret_cast<Listener::Function>(state.Invoke());
}

constexpr std::uint32_t largestCapacity = std::uint32_t{1} << 30;

}  // namespace

ListenerArray* ListenerArray::Make(const VtrString& property, std::uint32_t capacity) {
  if (capacity > largestCapacity) throw std::length_error("unordered_map/set too long");
  const std::size_t each = sizeof(Listener) + sizeof(ListenerMark);
  return ::new (::operator new(sizeof(ListenerArray) + capacity * each))
      ListenerArray(property, capacity);
}

ListenerArray::ListenerArray(const VtrString& name, std::uint32_t size) noexcept
    : property(name), capacity(size) {}

void ListenerArray::Destroy(ListenerArray* array) {
  for (std::uint32_t i = 0; i < array->count; ++i) {
    if (array->At(i)->state != nullptr) array->At(i)->state->Release();
  }
  array->~ListenerArray();
  ::operator delete(array);
}

void ListenerArray::Append(std::uint64_t id, const RepeatingCallbackBase& callback) noexcept {
  const BindStateBase* state = callback.GetBindState();
  if (state != nullptr) state->AddRef();
  const auto ownLoop = state != nullptr ? state->Loop() : nullptr;
  loop = ownLoop != nullptr && (live == 0 || loop == ownLoop) ? ownLoop
                                                              : &VtrUtils::details::MakeCalls;
  ::new (At(count)) Listener(state != nullptr ? Function(*state) : &RunNothing, state);
  ::new (&Marks()[count]) ListenerMark{id, ListenerMark::never};
  ++count;
  ++live;
}

void ListenerArray::CallWithName(std::uint32_t position, const VtrString& name) const {
  const Listener& listener = *At(position);
  const Listener::Function run = listener.run.load(std::memory_order_relaxed);
  if (run == &RunNothing) return;
  const auto untyped = reinterpret_cast<BindStateBase::InvokeFunction>(run);
  reinterpret_cast<void (*)(const BindStateBase*, const VtrString&)>(untyped)(listener.state, name);
}

void ListenerArray::CloseHoles() noexcept {
  std::uint32_t kept = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!IsRegistered(i)) continue;
    *At(kept) = *At(i);
    Marks()[kept].id = Marks()[i].id;
    SetRemoval(kept, Removal(i));
    ++kept;
  }
  count = kept;
}

ListenerArray* ListenerArray::Grown(bool pinned) {
  ListenerArray* grown = Make(property, std::max(live * 2, std::uint32_t{2}));
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!IsRegistered(i)) continue;
    if (pinned && At(i)->state != nullptr) At(i)->state->AddRef();
    ::new (grown->At(grown->count)) Listener(*At(i));
    ::new (&grown->Marks()[grown->count]) ListenerMark{Marks()[i].id, Removal(i)};
    ++grown->count;
  }
  grown->live = live;
  grown->loop = loop;
  if (!pinned) count = 0;
  return grown;
}

std::uint64_t ListenerArray::Removal(std::uint32_t position) const noexcept {
  return Marks()[position].removal.load(std::memory_order_relaxed);
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what the array holds
void ListenerArray::SetRemoval(std::uint32_t position, std::uint64_t removal) noexcept {
  Marks()[position].removal.store(removal, std::memory_order_relaxed);
}

std::uint32_t ListenerArray::Find(std::uint64_t id) const noexcept {
  const ListenerMark* const first = Marks();
  if (count == 0 || id > first[count - 1].id) return count;
  // Where the listener stands if all between it and the newest one registered here.
  const std::uint64_t behind = first[count - 1].id - id;
  if (behind < count && first[count - 1 - behind].id == id) {
    return static_cast<std::uint32_t>(count - 1 - behind);
  }
  const auto* found = std::lower_bound(
      first, first + count, id, [](const auto& mark, auto wanted) { return mark.id < wanted; });
  if (found == first + count || found->id != id) return count;
  return static_cast<std::uint32_t>(found - first);
}

void ListenerArray::Silence(std::uint32_t position) noexcept {
  At(position)->run.store(&RunNothing, std::memory_order_relaxed);
}

void ListenerArray::Pause(std::uint32_t position) noexcept {
  if (!IsRegistered(position)) return;
  SetRemoval(position, Removal(position) - 1);
  Silence(position);
}

void ListenerArray::Resume(std::uint32_t position) noexcept {
  if (!IsRegistered(position) || Removal(position) == ListenerMark::never) return;
  SetRemoval(position, Removal(position) + 1);
  const BindStateBase* const state = At(position)->state;
  if (Removal(position) != ListenerMark::never || state == nullptr) return;
  At(position)->run.store(Function(*state), std::memory_order_relaxed);
}

comlike_ptr<const BindStateBase> ListenerArray::Vacate(std::uint32_t position) noexcept {
  Listener& listener = *At(position);
  comlike_ptr<const BindStateBase> state(listener.state);
  listener = Listener(&RunNothing, nullptr);
  return state;
}

comlike_ptr<const BindStateBase> ListenerArray::TakeOut(std::uint32_t position) noexcept {
  auto state = Vacate(position);
  SetRemoval(position, ListenerMark::hole);
  --live;
  while (count > 0 && Removal(count - 1) == ListenerMark::hole) --count;
  if (count / 2 > live) CloseHoles();
  return state;
}

void ListenerArray::MarkRemoved(std::uint32_t position) noexcept {
  SetRemoval(position, ++lastRemoval);
  --live;
  ++removed;
}

void ListenerArray::Sweep(std::span<comlike_ptr<const BindStateBase>> out) noexcept {
  for (std::uint32_t i = 0; removed != 0 && i < count && !out.empty(); ++i) {
    if (Removal(i) == ListenerMark::hole || IsRegistered(i)) continue;
    SetRemoval(i, ListenerMark::hole);
    --removed;
    out.front() = Vacate(i);
    if (out.front()) out = out.subspan(1);
  }
  if (removed == 0 && count / 2 > live) CloseHoles();
}

}  // namespace DataBinding::details

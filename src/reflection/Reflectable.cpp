// SPDX-License-Identifier: Apache-2.0
// This file holds the table of members, and the calls of the destruction handlers at its end.
#include <limits>

#include "DataBinding/reflection/IReflectable.h"

namespace DataBinding::details {

namespace {

constexpr std::size_t notFound = std::numeric_limits<std::size_t>::max();

constinit thread_local HandlerFailures* innermostFailures = nullptr;

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

Reflectable::Reflectable(DelegateResolver forDelegates, TypeResolver forTypes)
    : resolveDelegate(std::move(forDelegates)), resolveType(std::move(forTypes)) {}

Reflectable::~Reflectable() {
  isEnding = true;
  RaiseQuietly(onDestroy);
  RaiseQuietly(onDestroyed);
}

void Reflectable::_AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                               const runtime_type_base& type) {
  const ReflectedItem former = std::exchange(items[name], ReflectedItem{delegate, type});
}

void Reflectable::_AddType(const VtrString& name, const runtime_type_base& type) {
  _AddDelegate(name, RepeatingCallbackMemento(), type);
}

std::pair<std::size_t, RepeatingCallbackMemento> Reflectable::_GetDelegate(
    std::initializer_list<DelegateTag> tags) const {
  std::size_t index = 0;
  for (const auto& [name, type] : tags) {
    const auto found = items.find(name);
    if (found != items.end()) {
      const ReflectedItem& item = found->second;
      if (!type.IsSameType(&item.type.get())) return {index, RepeatingCallbackMemento()};
      return {index, item.delegate};
    }
    auto resolved = resolveDelegate(name, type);
    if (!resolved.IsEmpty()) return {index, std::move(resolved)};
    ++index;
  }
  return {notFound, RepeatingCallbackMemento()};
}

std::pair<std::size_t, const runtime_type_base&> Reflectable::_GetType(
    std::initializer_list<VtrString> names) const {
  const runtime_type_base& none = runtime_type<void>::Get();
  std::size_t index = 0;
  for (const auto& name : names) {
    const auto found = items.find(name);
    if (found != items.end()) return {index, found->second.type.get()};
    const runtime_type_base& resolved = resolveType ? resolveType(name) : none;
    if (!resolved.IsSameType(&none)) return {index, resolved};
    ++index;
  }
  return {notFound, none};
}

Subscription Reflectable::AddOnDestroyHandler(const RepeatingCallback<void()>& callback) {
  return onDestroy.Subscribe(callback.GetMemento());
}

Subscription Reflectable::AddOnDestroyedHandler(const RepeatingCallback<void()>& callback) {
  return onDestroyed.Subscribe(callback.GetMemento());
}

bool Reflectable::IsProperty(const VtrString& name) const {
  return !_GetType({name}).second.IsFunction();
}

bool Reflectable::IsWritableProperty(const VtrString& name) const {
  const runtime_type_base& type = _GetType({name}).second;
  return !type.IsFunction() && !type.IsReadOnly();
}

}  // namespace DataBinding::details

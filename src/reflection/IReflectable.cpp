// SPDX-License-Identifier: Apache-2.0
// This file holds the object's virtual operations, which ask its table of members, and the typed
// look-ups, which ask the virtual operations.
#include "DataBinding/reflection/IReflectable.h"

namespace DataBinding {

IReflectable::IReflectable() : reflectable(*this) {}

// The references of GetLiveness end here, before the table's destructor calls the destruction
// handlers.
IReflectable::~IReflectable() { liveness.Invalidate(); }

bool IReflectable::IsProperty(const VtrString& name) const { return reflectable.IsProperty(name); }

bool IReflectable::IsWritableProperty(const VtrString& name) const {
  return reflectable.IsWritableProperty(name);
}

RepeatingCallbackMemento IReflectable::GetDynamicDelegate(const VtrString& /*name*/,
                                                          const runtime_type_base& /*type*/) {
  return RepeatingCallbackMemento();
}

const runtime_type_base& IReflectable::GetDynamicType(const VtrString& /*name*/) {
  return runtime_type<void>::Get();
}

Subscription IReflectable::AddOnDestroyHandler(const RepeatingCallback<void()>& callback) {
  return reflectable.AddOnDestroyHandler(callback);
}

Subscription IReflectable::AddOnDestroyedHandler(const RepeatingCallback<void()>& callback) {
  return reflectable.AddOnDestroyedHandler(callback);
}

IReflectable::iterator IReflectable::begin() { return reflectable.begin(); }
IReflectable::const_iterator IReflectable::begin() const { return reflectable.begin(); }
IReflectable::iterator IReflectable::end() { return reflectable.end(); }
IReflectable::const_iterator IReflectable::end() const { return reflectable.end(); }

std::vector<VtrString> IReflectable::GetNamesInOrder() const { return reflectable.NamesInOrder(); }

void IReflectable::_AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                                const runtime_type_base& type) {
  reflectable._AddDelegate(name, delegate, type);
}

void IReflectable::_AddType(const VtrString& name, const runtime_type_base& type) {
  reflectable._AddType(name, type);
}

std::pair<std::size_t, RepeatingCallbackMemento> IReflectable::_GetDelegate(
    std::initializer_list<DelegateTag> tags) {
  return reflectable._GetDelegate(tags);
}

std::pair<std::size_t, const runtime_type_base&> IReflectable::_GetType(
    std::initializer_list<VtrString> names) {
  return reflectable._GetType(names);
}

namespace {

/// A look-up changes nothing, but the virtual operations that answer it are not const.
IReflectable& Asked(const IReflectable* table) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
  return const_cast<IReflectable&>(*table);
}

}  // namespace

RepeatingCallbackMemento IReflectable::GetDelegateMemento(const VtrString& name,
                                                          const runtime_type_base& type) const {
  return Asked(this)._GetDelegate({{name, type}}).second;
}

const runtime_type_base& IReflectable::GetDelegateType(const VtrString& name) const {
  return Asked(this)._GetType({name}).second;
}

const runtime_type_base& IReflectable::GetDelegatesType(
    std::initializer_list<VtrString> names) const {
  return Asked(this)._GetType(names).second;
}

// The name is deliberately taken by value: callers usually make it for this call.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void IReflectable::MakeEventSource(VtrString name) { _AddType(name, runtime_type<void()>::Get()); }

}  // namespace DataBinding

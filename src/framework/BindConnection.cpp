// SPDX-License-Identifier: Apache-2.0
// This file holds the part of a data bind that does not depend on its type. It has a listener in
// each scope from the bind's own outward, follows the nearest source that one of them knows, and
// tells the bind's subscribers.

#include <algorithm>
#include <utility>

#include "DataBindListener.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/property/details/ShownRecord.h"
#include "Explanation.h"

namespace DataBinding::details {

namespace {

using Framework::BindChange;

void TellPlain(const BindStateBase* subscriber, const BindConnection& /*connection*/,
               const BindChange& /*change*/) {
  VtrUtils::details::Invoker<void()>::CallOf(*subscriber);
}

/// Calls a subscriber with what has happened, unless a subscriber before it has undone that. Then
/// all of them have been told that already.
void TellChange(const BindStateBase* subscriber, const BindConnection& connection,
                const BindChange& change) {
  if (connection.HasToldOfValue() == (change == BindChange::Went)) return;
  VtrUtils::details::Invoker<void(BindChange)>::CallOf(*subscriber, change);
}

}  // namespace

BindConnection::BindConnection(const Framework::IBaseBind& bind, const runtime_type_base* plain,
                               const runtime_type_base* readOnly)
    : plainType(plain),
      readOnlyType(readOnly),
      contextName(bind.DataContextName()),
      sourceName(bind.DataSource()),
      propertyName(bind.Path()) {}

BindConnection::~BindConnection() { InvalidateWeakPtrs(); }

void BindConnection::Connect(const Framework::IBaseBind& bind, IDataSourceProvider* provider) {
  const IDataSource* const formerSource = source;
  const bool isOtherName = propertyName != bind.Path();
  listeners.clear();
  contextName = bind.DataContextName();
  sourceName = bind.DataSource();
  propertyName = bind.Path();
  Enter(provider);
  if (isOtherName) ++follows;
  Follow(NearestSource());
  if (formerSource == nullptr && source == nullptr) return;
  const bool isOther = isOtherName || source != formerSource;
  Notify(isOther ? BindChange::Replaced : BindChange::Value);
}

IDataSourceProvider* BindConnection::Provider() const {
  return listeners.empty() ? nullptr : listeners.front()->Scope();
}

void BindConnection::Enter(IDataSourceProvider* provider) {
  IDataSourceProvider* connecting = provider;
  while (connecting != nullptr && !connecting->IsConnecting()) connecting = connecting->GetParent();
  isWaiting = connecting != nullptr;
  if (isWaiting) {
    listeners.push_back(std::make_unique<DataBindListener>(*this, *provider));
    return listeners.front()->Await(*connecting);
  }
  for (auto* scope = provider; scope != nullptr; scope = scope->GetParent()) {
    listeners.push_back(std::make_unique<DataBindListener>(*this, *scope));
  }
  const std::size_t first = NamesAProperty() ? ContextIndex() : listeners.size();
  for (std::size_t i = 0; i < listeners.size(); ++i) listeners[i]->Listen(i >= first);
}

/// Enters the scopes anew, because the tree may have changed while the bind waited.
void BindConnection::Resume() {
  IDataSourceProvider* const scope = Provider();
  listeners.clear();
  Enter(scope);
  Update();
}

void BindConnection::CutAt(const DataBindListener& listener) {
  const auto cut =
      std::ranges::find(listeners, &listener, [](const auto& each) { return each.get(); });
  listeners.erase(cut, listeners.end());
  Update();
}

void BindConnection::Update() {
  IDataSource* const nearest = NearestSource();
  if (nearest == source && !isBehind) return;
  isBehind = true;
  Follow(nearest);
  isBehind = false;
  Notify(BindChange::Replaced);
}

/// Registers for the property at another source, or at none, and gives up the former source, which
/// may be ending. Where there is no memory for that, the next update does it.
void BindConnection::Follow(IDataSource* newSource) {
  propertySubscription.Cancel();
  if (newSource != source) ++follows;
  source = nullptr;
  record = nullptr;
  found = &Refer(newSource, propertyName);
  if (newSource != nullptr) {
    const auto announced = [](BindConnection& self) { self.OnAnnounced(); };
    // An announcement compares names faster where the property shares its name's text.
    propertySubscription = newSource->Register(BindWeak(AsWeakPtr(), announced), found->Name());
  }
  source = newSource;
  record = ShownRecord::Of(source);
  recordSerial = record == nullptr ? 0 : record->Serial();
}

/// A source that is ending is not asked.
std::uint64_t BindConnection::Record() const noexcept {
  constexpr unsigned bitsOfSerial = 32;
  const bool isThere = record != nullptr && found->IsThere();
  return (follows << bitsOfSerial) + (isThere ? record->Serial() : recordSerial);
}

void BindConnection::OnAnnounced() {
  const std::uint64_t serial = record == nullptr ? 0 : record->Serial();
  const bool isSame = std::exchange(recordSerial, serial) == serial;
  Notify(isSame ? BindChange::Value : BindChange::Replaced);
}

Subscription BindConnection::Subscribe(const Framework::ChangeCallback& callback) {
  const auto& told = callback.WithChange();
  if (told) return subscribers.AddFor(told.GetMemento(), &TellChange);
  return subscribers.AddFor(callback.WithoutChange().GetMemento(), &TellPlain);
}

/// Calls each subscriber, even if others throw. A subscriber may end the connection.
void BindConnection::Notify(BindChange ofProperty) {
  FirstFailure failure;
  const bool hadValue = std::exchange(hasToldOfValue, false);
  failure.Try([&] { hasToldOfValue = found->IsThere() || HasValue(); });
  const BindChange present = hadValue ? ofProperty : BindChange::Came;
  const BindChange change = hasToldOfValue ? present : BindChange::Went;
  failure.Try([&] { subscribers.CallAll(*this, change); });
  failure.Rethrow();
}

bool BindConnection::NamesAProperty() const {
  return IsNamed(sourceName, Framework::nullDataMarker) &&
         IsNamed(propertyName, Framework::nullPathMarker);
}

/// Returns the place of the listener in the scope that the data context's name means, or a place
/// past the end if there is no such scope.
std::size_t BindConnection::ContextIndex() const {
  if (!IsNamed(contextName, Framework::nullDataMarker)) return 0;
  std::size_t index = 0;
  while (index < listeners.size() && !listeners[index]->HasCategory(contextName)) ++index;
  return index;
}

IDataSource* BindConnection::NearestSource() const noexcept {
  for (const auto& listener : listeners) {
    if (listener->Source() != nullptr) return listener->Source();
  }
  return nullptr;
}

Framework::BindStatus BindConnection::Status() const {
  const Wish wish{sourceName, propertyName, plainType, readOnlyType};
  if (!NamesAProperty()) return ExplainUnbound(sourceName);
  if (Provider() == nullptr) return ExplainNoScope(wish);
  if (isWaiting) return ExplainWaiting(wish);
  const std::size_t context = ContextIndex();
  IDataSourceProvider* scope = context < listeners.size() ? listeners[context]->Scope() : nullptr;
  if (scope == nullptr) return ExplainNoContext(wish, contextName);
  // A source that ends without its scope's knowledge tells one bind after the other, so this bind
  // may still refer to a source that is ending.
  const bool isThere = source != nullptr && !ReflectionAccess::IsEnding(*source);
  if (!isThere) return ExplainMissing(wish, *scope);
  const Framework::BindStatus status = ExplainFound(wish, *scope, *source);
  // An accessor of another kind may be filed under the wanted type.
  return status.IsConnected() && !HasValue() ? ExplainUnreachable(wish, *source) : status;
}

}  // namespace DataBinding::details

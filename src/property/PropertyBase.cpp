// SPDX-License-Identifier: Apache-2.0
// This file holds what properties do without knowing their type: they file themselves, follow
// others, and begin an announcement when they have changed.

#include "DataBinding/property/details/PropertyBase.h"

#include <atomic>
#include <cassert>
#include <memory>
#include <vector>

#include "DataBinding/property/PropertyAccess.h"
#include "PropertyAnnouncement.h"

namespace DataBinding::details {

PropertyBase::PropertyBase(DataSourceImpl& itsSource, PropertyName propertyName,
                           std::unique_ptr<PropertyExtras> options)
    : PropertyBase(itsSource, propertyName) {
  if (options == nullptr) return;
  options->property = this;
  extras.store(options.release(), std::memory_order_relaxed);
}

PropertyExtras& PropertyBase::Extras() const {
  PropertyExtras* existing = ExistingExtras();
  if (existing != nullptr) return *existing;
  auto made = std::make_unique<PropertyExtras>();
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): announcing changes nothing in a property
  made->property = const_cast<PropertyBase*>(this);
  if (!extras.compare_exchange_strong(existing, made.get(), std::memory_order_acq_rel)) {
    return *existing;
  }
  return *made.release();
}

void PropertyBase::EndExtras() noexcept {
  const std::unique_ptr<PropertyExtras> ended(ExistingExtras());
  PropertyAnnouncement::ReleaseFollowers(*ended);
  PropertyAnnouncement::Forget(*ended);
  for (PropertyExtras* other : ended->dependents) std::erase(other->dependencies, ended.get());
  for (PropertyExtras* other : ended->dependencies) std::erase(other->dependents, ended.get());
}

void PropertyBase::File(const runtime_type_base& type) {
  assert(!ReflectionAccess::HasLiving(Source(), Name()) &&
         "a source has two properties of one name");
  try {
    ReflectionAccess::File(Home(), *this, type, DataSourceAccess::IsComplete(Source()));
    // A property that an override files elsewhere is not found when a batch is opened.
    const PropertyChanges* const changes = DataSourceAccess::Changes(Source());
    if (!IsChained() || (changes != nullptr && changes->AreAllLinked())) Extras();
  } catch (...) {
    EndAccess();
    throw;
  }
}

void PropertyBase::EndAccess() noexcept {
  if (IsChained()) ReflectionAccess::Unfile(Home(), *this);
  if (PropertyExtras* const existing = ExistingExtras()) existing->weak.Invalidate();
}

comlike_ptr<BindStateBase> PropertyBase::MakeState() {
  auto& shared = Extras().accessor;
  BindStateBase* existing = shared.load(std::memory_order_acquire);
  if (existing == nullptr) {
    PropertyAccessor made = BindWeak(AsWeakPtr(), [](PropertyBase& property) { return &property; });
    // Another thread may be faster.
    if (shared.compare_exchange_strong(existing, made.GetBindState(), std::memory_order_acq_rel)) {
      existing = made.TakeBindState().Detach();
    }
  }
  return comlike_ptr<BindStateBase>::Share(existing);
}

CheckedExtras* PropertyBase::ExistingChecks() const noexcept {
  PropertyExtras* const existing = ExistingExtras();
  const bool isChecked = existing != nullptr && existing->hasOptions;
  return isChecked ? static_cast<CheckedExtras*>(existing) : nullptr;
}

void PropertyBase::NoteReadByValidator(std::initializer_list<PropertyBase*> others) {
  CheckedExtras* const checks = ExistingChecks();
  if (checks == nullptr) return;
  for (PropertyBase* other : others) checks->readByValidator.push_back(other->AsWeakPtr());
}

bool PropertyBase::ValidatorReadsOthers() const noexcept {
  const CheckedExtras* const checks = ExistingChecks();
  return checks != nullptr && !checks->readByValidator.empty();
}

Subscription PropertyBase::SubscribeToChecks(const RepeatingCallback<void()>& callback) const {
  if (!ValidatorReadsOthers()) return {};
  auto all = std::make_shared<std::vector<Subscription>>();
  for (const auto& other : ExistingChecks()->readByValidator) {
    if (other) all->push_back(other->Source().Register(callback, other->Name()));
  }
  return Subscription([all] { all->clear(); });
}

void PropertyBase::DependOn(std::initializer_list<const PropertyBase*> others) {
  static constinit std::atomic<std::uint64_t> lastTurn{PropertyLink::firstComputedTurn};
  DataSourceAccess::MakeChanges(Source());
  PropertyExtras& own = Extras();
  own.turn = lastTurn.fetch_add(1, std::memory_order_relaxed);
  own.dependencies.reserve(others.size());
  for (const PropertyBase* other : others) {
    DataSourceAccess::MakeChanges(other->Source());
    PropertyExtras& followed = other->Extras();
    followed.dependents.push_back(&own);
    own.dependencies.push_back(&followed);
  }
}

PropertyChanges& PropertyBase::PrepareBatch(DataSourceImpl& source) {
  PropertyChanges& changes = DataSourceAccess::MakeChanges(source);
  if (changes.AreAllLinked()) return changes;
  for (auto* member = ReflectionAccess::Newest(source); member != nullptr;
       member = member->Older()) {
    static_cast<PropertyBase*>(member)->Extras();  // only properties are chained
  }
  changes.SetAllLinked();
  return changes;
}

void PropertyBase::NotifyChanged() {
  PropertyChanges* const changes = DataSourceAccess::Changes(Source());
  PropertyExtras* const own = ExistingExtras();
  const bool isAlone = own == nullptr || own->IsAlone();
  if (changes == nullptr || (isAlone && !changes->IsOpen())) {
    return Source().UpdateListeners(Name());
  }
  if (own == nullptr) return;  // it is ending: a batch was opened after it had left its source
  PropertyAnnouncement::Note(*own);
  if (changes->IsOpen()) return;
  PropertyAnnouncement announcement;
  announcement.Take(*changes);
  announcement.Run();
}

SetResult PropertyBase::ReadOnlyResult() const {
  constexpr auto error = PropertyError::ReadOnly;
  return {false, error, ReflectionAccess::Explain(error, &Source(), Name(), nullptr)};
}

SetResult PropertyBase::RefusedResult(const VtrString& reason) const {
  SetResult result{false, PropertyError::Refused, {}, reason};
  result.text.Format(L"Property \"%s\" of data source \"%s\" refuses the value: %s", Name(),
                     ReflectionAccess::NameOf(Source()), reason);
  return result;
}

SetResult PropertyBase::UnfitResult(PropertyError error, const VtrString& text) const {
  if (error == PropertyError::Refused) return RefusedResult(text);
  return {false, error,
          VtrString().Format(L"Property \"%s\" of data source \"%s\" does not convert: %s", Name(),
                             ReflectionAccess::NameOf(Source()), text)};
}

}  // namespace DataBinding::details

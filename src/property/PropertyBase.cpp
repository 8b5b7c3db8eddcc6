// SPDX-License-Identifier: Apache-2.0
// This file holds what properties do without knowing their type: they file themselves, follow
// others, and begin an announcement when they have changed.

#include "DataBinding/property/details/PropertyBase.h"

#include <atomic>
#include <cassert>

#include "DataBinding/property/PropertyAccess.h"
#include "PropertyAnnouncement.h"

namespace DataBinding::details {

PropertyBase::PropertyBase(DataSourceImpl& itsSource, PropertyName propertyName)
    : source(itsSource), filedName(propertyName.ToString()) {
  // The reference is made now, so that nothing has to be allocated between a change and its
  // notification.
  static_cast<void>(source.GetLiveness());
}

PropertyBase::~PropertyBase() {
  PropertyAnnouncement::ReleaseFollowers(*this);
  PropertyAnnouncement::Forget(*this);
  for (PropertyBase* other : dependents) std::erase(other->dependencies, this);
  for (const PropertyBase* other : dependencies) std::erase(other->dependents, this);
}

void PropertyBase::File(const RepeatingCallbackMemento& accessor, const runtime_type_base& type) {
  assert(!ReflectionAccess::HasLiving(source, Name()) && "a source has two properties of one name");
  ReflectionAccess::File(source, Name(), accessor, type);
}

void PropertyBase::DependOn(std::initializer_list<const PropertyBase*> others) {
  static constinit std::atomic<std::uint64_t> lastTurn{firstComputedTurn};
  turn = lastTurn.fetch_add(1, std::memory_order_relaxed);
  dependencies.reserve(others.size());
  for (const PropertyBase* other : others) {
    other->dependents.push_back(this);
    dependencies.push_back(other);
  }
}

void PropertyBase::NotifyChanged() {
  PropertyChanges& changes = DataSourceAccess::Changes(source);
  const bool isAlone = dependents.empty() && dependencies.empty() && place == Place::None;
  if (isAlone && !changes.IsOpen()) return source.UpdateListeners(Name());
  PropertyAnnouncement::Note(*this);
  if (changes.IsOpen()) return;
  PropertyAnnouncement announcement;
  announcement.Take(changes);
  announcement.Run();
}

SetResult PropertyBase::ReadOnlyResult(const runtime_type_base& wanted) const {
  constexpr auto error = PropertyError::ReadOnly;
  return {false, error, ReflectionAccess::Explain(error, &source, Name(), wanted)};
}

SetResult PropertyBase::RefusedResult(const VtrString& reason) const {
  SetResult result{false, PropertyError::Refused, {}, reason};
  result.text.Format(L"Property \"%s\" of data source \"%s\" refuses the value: %s", Name(),
                     ReflectionAccess::NameOf(source), reason);
  return result;
}

}  // namespace DataBinding::details

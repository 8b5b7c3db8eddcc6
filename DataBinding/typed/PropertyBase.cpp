#include "DataBinding/PropertyBase.h"

#include <algorithm>

#include "DataBinding/PropertyAccess.h"
#include "DataBinding/PropertyBatch.h"

namespace DataBinding::details {

PropertyBase::PropertyBase(DataSourceImpl& ownerSource, PropertyName propertyName)
    : owner(ownerSource), link(VtrString(propertyName.Get())) {}

PropertyBase::~PropertyBase() {
  DataSourceAccess::Changes(owner).Remove(link);
  for (PropertyBase* other : dependents) std::erase(other->dependencies, this);
  for (PropertyBase* other : dependencies) std::erase(other->dependents, this);
}

void PropertyBase::File(const RepeatingCallbackMemento& accessor, const runtime_type_base& type) {
  ReflectionAccess::File(owner, Name(), accessor, type);
}

void PropertyBase::DependOn(std::initializer_list<PropertyBase*> others) {
  dependencies.reserve(others.size());
  for (PropertyBase* other : others) {
    if (std::ranges::count(dependencies, other) != 0) continue;
    other->dependents.push_back(this);
    dependencies.push_back(other);
  }
}

void PropertyBase::NotifyChanged() {
  PropertyChanges& changes = DataSourceAccess::Changes(owner);
  if (dependents.empty() && !changes.IsOpen()) return owner.UpdateListeners(Name());
  const auto self = AsWeakPtr();
  const PropertyBatch batch(owner);
  changes.Add(link);
  // Those of another source notify at once, and may end this property.
  for (std::size_t i = 0; self && i < dependents.size(); ++i) dependents[i]->NotifyChanged();
}

SetResult PropertyBase::ReadOnlyResult(const runtime_type_base& wanted) const {
  constexpr auto error = PropertyError::ReadOnly;
  return {false, error, ReflectionAccess::Explain(error, &owner, Name(), wanted)};
}

SetResult PropertyBase::RefusedResult(const VtrString& reason) const {
  SetResult result{false, PropertyError::Refused, {}};
  result.text.Format(L"Property \"%s\" of data source \"%s\" refuses the value: %s", Name(),
                     ReflectionAccess::NameOf(owner), reason);
  return result;
}

}  // namespace DataBinding::details

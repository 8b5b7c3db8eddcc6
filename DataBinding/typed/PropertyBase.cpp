#include "DataBinding/PropertyBase.h"

#include <algorithm>

#include "DataBinding/PropertyAccess.h"
#include "DataBinding/PropertyBatch.h"

namespace DataBinding::details {

PropertyBase::PropertyBase(DataSourceImpl& ownerSource, PropertyName propertyName)
    : owner(ownerSource), link(VtrString(propertyName.Get())) {
  // Made now, so that nothing has to be allocated between a change and its notification.
  static_cast<void>(DataSourceAccess::Liveness(owner));
}

PropertyBase::~PropertyBase() {
  DataSourceAccess::Changes(owner).Remove(link);
  for (PropertyBase* other : dependents) {
    if (other != nullptr) std::erase(other->dependencies, this);
  }
  for (PropertyBase* other : dependencies) other->ForgetDependent(this);
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

/// The scope in which a property calls its dependents, which may end each other and the property:
/// places are emptied meanwhile and closed at the end.
class PropertyBase::DependentsCalled {
 public:
  explicit DependentsCalled(PropertyBase& caller) : property(caller), self(caller.AsWeakPtr()) {
    ++property.callsToDependents;
  }
  DependentsCalled(const DependentsCalled&) = delete;
  DependentsCalled& operator=(const DependentsCalled&) = delete;
  ~DependentsCalled() {
    if (self && --property.callsToDependents == 0) std::erase(property.dependents, nullptr);
  }
  [[nodiscard]] PropertyBase* At(std::size_t i) const { return property.dependents[i]; }
  [[nodiscard]] bool Has(std::size_t i) const { return self && i < property.dependents.size(); }

 private:
  PropertyBase& property;
  WeakPtr<PropertyBase> self;
};

void PropertyBase::ForgetDependent(const PropertyBase* ending) noexcept {
  if (callsToDependents == 0) {
    std::erase(dependents, ending);
  } else {
    std::ranges::replace(dependents, ending, nullptr);
  }
}

void PropertyBase::NotifyChanged() {
  PropertyChanges& changes = DataSourceAccess::Changes(owner);
  if (dependents.empty() && !changes.IsOpen()) return owner.UpdateListeners(Name());
  const PropertyBatch batch(owner);
  changes.Add(link);
  const DependentsCalled called(*this);
  for (std::size_t i = 0; called.Has(i); ++i) {
    if (PropertyBase* dependent = called.At(i)) dependent->NotifyChanged();
  }
}

SetResult PropertyBase::ReadOnlyResult(const runtime_type_base& wanted) const {
  constexpr auto error = PropertyError::ReadOnly;
  return {false, error, ReflectionAccess::Explain(error, &owner, Name(), wanted)};
}

SetResult PropertyBase::RefusedResult(const VtrString& reason) const {
  SetResult result{false, PropertyError::Refused, {}, reason};
  result.text.Format(L"Property \"%s\" of data source \"%s\" refuses the value: %s", Name(),
                     ReflectionAccess::NameOf(owner), reason);
  return result;
}

}  // namespace DataBinding::details

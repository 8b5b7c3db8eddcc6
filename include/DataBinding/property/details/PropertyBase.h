// SPDX-License-Identifier: Apache-2.0
/// PropertyBase holds what all properties share: their data source, their name, and the properties
/// that are computed from them.
///
/// A property belongs to one data source and is a member of it. It files itself in the source's
/// reflection table when it is made, and its accessor there answers only as long as the property
/// lives. It is used on the thread that owns the provider tree.
#pragma once

#include <initializer_list>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/DataSourceImpl.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/property/PropertyName.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding::details {

/// IProperty is the interface of a property that was found by name. The property's accessor returns
/// it, or null when the property is gone.
template <class T>
class IProperty {
 public:
  [[nodiscard]] virtual T GetValue() const = 0;
  /// Sets the value. Refuses it as read-only unless the property may be set from outside.
  virtual SetResult SetValue(T value) = 0;

 protected:
  IProperty() noexcept = default;
  IProperty(const IProperty&) noexcept = default;
  IProperty& operator=(const IProperty&) noexcept = default;
  ~IProperty() = default;
};

template <class T>
using PropertyAccessor = RepeatingCallback<IProperty<T>*()>;

class PropertyAnnouncement;

class DATABINDING_API PropertyBase : public SupportsWeakPtr<PropertyBase>, private PropertyLink {
 public:
  PropertyBase(const PropertyBase&) = delete;
  PropertyBase& operator=(const PropertyBase&) = delete;

  [[nodiscard]] const VtrString& Name() const noexcept { return filedName; }

  /// Tells the listeners of this property that the value has changed, and then the listeners of all
  /// properties that are computed from it, directly or not: each property once, and after all that
  /// it is computed from. It calls UpdateListeners of a property's source once for each name. While
  /// a PropertyBatch is open on a source, the properties of the source, and what is computed from
  /// them, wait for its end. This property, its source or others may be gone when this returns.
  void NotifyChanged();

 protected:
  PropertyBase(DataSourceImpl& itsSource, PropertyName propertyName);
  ~PropertyBase();

  void File(const RepeatingCallbackMemento& accessor, const runtime_type_base& type);
  /// Makes this property follow others: it is notified whenever one of them changes.
  void DependOn(std::initializer_list<const PropertyBase*> others);
  [[nodiscard]] DataSourceImpl& Source() const noexcept { return source; }
  [[nodiscard]] SetResult ReadOnlyResult(const runtime_type_base& wanted) const;
  [[nodiscard]] SetResult RefusedResult(const VtrString& reason) const;

 private:
  friend DataSourceAccess;
  friend PropertyAnnouncement;

  DataSourceImpl& source;
  VtrString filedName;
  /// Holds the properties that are computed from this one. It is mutable since following a property
  /// does not change it.
  mutable std::vector<PropertyBase*> dependents;
  std::vector<const PropertyBase*> dependencies;
};

/// TypedProperty files a property under its name. Filed is `const T` for a property that only its
/// source may set.
template <class T, class Filed>
class TypedProperty : public PropertyBase, protected IProperty<T> {
 protected:
  TypedProperty(DataSourceImpl& itsSource, PropertyName propertyName)
      : PropertyBase(itsSource, propertyName) {
    const PropertyAccessor<T> accessor = BindWeak(AsWeakPtr(), &TypedProperty::Access);
    File(accessor.GetMemento(), runtime_type<Filed>::Get());
  }
  ~TypedProperty() = default;

 private:
  static IProperty<T>* Access(PropertyBase& property) {
    return &static_cast<TypedProperty&>(property);
  }
};

}  // namespace DataBinding::details

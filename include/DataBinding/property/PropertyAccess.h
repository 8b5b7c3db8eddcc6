// SPDX-License-Identifier: Apache-2.0
/// GetProperty, SetProperty and PropertyRef read and set properties by name, with their types
/// checked, for code that does not know the source's class.
///
/// When a look-up fails, its PropertyError tells the reason and its text explains it. Reading
/// accepts read-only properties of the same value type; no type is converted to another.
/// GetProperty and SetProperty allocate nothing where nothing fails, beyond what copying the value
/// takes. The first PropertyRef to a property allocates what later ones share.
///
///   if (const auto load = GetProperty<double>(source, L"Load")) Show(*load);
///   SetResult set = SetProperty(source, L"Target", 22.0);
///   if (!set.IsAccepted()) Complain(set.text);
#pragma once

#include <exception>
#include <type_traits>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/property/details/PropertyBase.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding {

namespace details {

/// ReflectionAccess is the untyped part of a look-up.
class DATABINDING_API ReflectionAccess {
 public:
  struct DATABINDING_API Found {
    PropertyError error = PropertyError::None;
    bool isReadOnly = false;
    /// The property itself, which is of the wanted type. It is good until any other code runs.
    PropertyBase* property = nullptr;
    /// The accessor that was filed by hand, where there is no such property.
    RepeatingCallbackMemento accessor;

    [[nodiscard]] bool HasAccessor() const noexcept {
      return property != nullptr || !accessor.IsEmpty();
    }
    /// Makes the accessor of the property, where it is one.
    [[nodiscard]] RepeatingCallbackMemento Accessor() const;
    /// Returns the property with its type, or null.
    template <class T>
    [[nodiscard]] IProperty<T>* As() const noexcept {
      return static_cast<IProperty<T>*>(property);
    }
  };
  /// Finds the accessor of a property whose type is `plain`, or `readOnly` for a read-only one.
  [[nodiscard]] static Found Find(const IDataSource* source, const VtrString& name,
                                  const runtime_type_base& plain,
                                  const runtime_type_base& readOnly);
  /// Returns the text for an error of that look-up.
  [[nodiscard]] static VtrString Explain(PropertyError error, const IDataSource* source,
                                         const VtrString& name, const runtime_type_base& wanted);
  /// Returns the text for a property whose source is gone, or going.
  [[nodiscard]] static VtrString ExplainGone(const VtrString& name,
                                             const runtime_type_base& wanted);
  /// Returns true once the source's destruction handlers run. It has no name any more then.
  [[nodiscard]] static bool IsEnding(const IDataSource& source) noexcept {
    return source.reflectable.IsEnding();
  }
  /// Returns the source's name for a message. The name is empty while the source is ending.
  [[nodiscard]] static VtrString NameOf(const IDataSource& source);
  /// Returns true when a property of that name stands in the table and is not gone.
  [[nodiscard]] static bool HasLiving(const IReflectable& table, const VtrString& name);
  /// Files a property. A source that is complete goes on living when the property ends, so it makes
  /// sure that the name can be kept then.
  static void File(IReflectable& table, PropertyBase& property, bool isTableComplete);
  static void Unfile(IReflectable& table, PropertyBase& property) noexcept {
    table.reflectable.Unlink(property);
  }
  /// Returns the newest property of a source that stands in its chain, or null.
  [[nodiscard]] static ChainedMember* Newest(const IReflectable& table) noexcept {
    return table.reflectable.Newest();
  }

 private:
  static void FindAccessor(const IReflectable& table, const VtrString& name,
                           const runtime_type_base& wanted, Found& found);
};

}  // namespace details

/// A PropertyRef is a property that was found by name. It may be kept: it answers "absent" once the
/// property is gone.
///
/// A PropertyRef<const int> reads a property of type int and cannot set it. Therefore a const
/// source gives one, too.
template <class T>
class PropertyRef {
 public:
  /// Value is the type of the property's value: T without its const.
  using Value = std::remove_const_t<T>;
  /// The property is looked up in a source of this type.
  using Source = std::conditional_t<std::is_const_v<T>, const IDataSource, IDataSource>;

  /// Looks the property up, once. The source may be null and may end later.
  PropertyRef(Source* source, const VtrString& propertyName)
      : PropertyRef(
            source, propertyName,
            details::ReflectionAccess::Find(source, propertyName, runtime_type<Value>::Get(),
                                            runtime_type<const Value>::Get())) {}
  /// Takes what such a look-up has just found.
  PropertyRef(Source* source, const VtrString& propertyName,
              const details::ReflectionAccess::Found& found)
      : name(propertyName), error(found.error), isReadOnly(found.isReadOnly) {
    const auto& wanted = runtime_type<Value>::Get();
    accessor.SetMemento(found.Accessor());
    if (error == PropertyError::None && !accessor) error = PropertyError::NoAccessor;
    if (error != PropertyError::None) {
      text = details::ReflectionAccess::Explain(error, source, name, wanted);
    }
  }

  /// Tells why the property was not found; None when it was found, also after it has gone.
  [[nodiscard]] PropertyError Error() const noexcept { return error; }
  /// Explains why the property was not found. The text is empty when it was found.
  [[nodiscard]] const VtrString& Text() const noexcept { return text; }
  /// Returns true for a property that only its source may set, and for computed ones.
  [[nodiscard]] bool IsReadOnly() const noexcept { return isReadOnly; }
  /// Returns true when the property was found.
  explicit operator bool() const noexcept { return error == PropertyError::None; }

  /// Returns true while the property can be read: it was found and is not gone since.
  [[nodiscard]] bool IsThere() const {
    return error == PropertyError::None && accessor() != nullptr;
  }

  /// Returns a copy of the value, or the reason why there is none.
  [[nodiscard]] PropertyValue<Value> Get() const {
    if (error != PropertyError::None) return {{}, error, text};
    const auto* access = accessor();
    if (access == nullptr) return {{}, PropertyError::Absent, GoneText()};
    return {access->GetValue(), PropertyError::None, {}};
  }
  /// Sets the value as the property's own Set does: listeners run before this returns.
  // NOLINTNEXTLINE(modernize-use-nodiscard): setting is done for its effect
  SetResult Set(T value) const requires(!std::is_const_v<T>) {
    if (error != PropertyError::None) return {false, error, text};
    auto* access = accessor();
    if (access == nullptr) return {false, PropertyError::Absent, GoneText()};
    return access->SetValue(std::move(value));
  }

 private:
  [[nodiscard]] VtrString GoneText() const {
    return details::ReflectionAccess::ExplainGone(name, runtime_type<Value>::Get());
  }

  VtrString name;
  details::PropertyAccessor<Value> accessor;
  PropertyError error = PropertyError::None;
  bool isReadOnly = false;
  VtrString text;
};

/// Finds a property that can then be read and set more than once without another look-up;
/// `FindProperty<const int>` finds it only to be read, in a const source too.
template <class T>
[[nodiscard]] PropertyRef<T> FindProperty(typename PropertyRef<T>::Source* source,
                                          const VtrString& name) {
  return PropertyRef<T>(source, name);
}

/// Finds and reads a property.
template <class T>
[[nodiscard]] PropertyValue<T> GetProperty(const IDataSource* source, const VtrString& name) {
  const auto found = details::ReflectionAccess::Find(source, name, runtime_type<T>::Get(),
                                                     runtime_type<const T>::Get());
  if (const auto* property = found.template As<T>()) {
    return {property->GetValue(), PropertyError::None, {}};
  }
  return PropertyRef<const T>(source, name, found).Get();
}

/// Finds and sets a property. T is the property's own type: an int does not set a double.
template <class T>
SetResult SetProperty(IDataSource* source, const VtrString& name, T value) {
  const auto found = details::ReflectionAccess::Find(source, name, runtime_type<T>::Get(),
                                                     runtime_type<const T>::Get());
  if (auto* property = found.template As<T>()) return property->SetValue(std::move(value));
  return PropertyRef<T>(source, name, found).Set(std::move(value));
}

/// Sets a property of type VtrString from a literal.
inline SetResult SetProperty(IDataSource* source, const VtrString& name, const wchar_t* text) {
  return SetProperty<VtrString>(source, name, text);
}

/// Calls visit(value) with the property's value if its type is one of the listed ones, and tells
/// whether it was. This serves code that writes out whatever it finds.
template <class... Types, class Visitor>
bool VisitProperty(const IDataSource* source, const VtrString& name, Visitor&& visit) {
  const auto attempt = [&]<class T>(std::type_identity<T>) {
    const auto& type = runtime_type<T>::Get();
    const auto sought =
        details::ReflectionAccess::Find(source, name, type, runtime_type<const T>::Get());
    if (sought.error != PropertyError::None) return false;
    const auto value = GetProperty<T>(source, name);
    if (value) visit(*value);
    return static_cast<bool>(value);
  };
  return (attempt(std::type_identity<Types>()) || ...);
}

}  // namespace DataBinding

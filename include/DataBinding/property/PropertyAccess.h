// SPDX-License-Identifier: Apache-2.0
/// GetProperty, SetProperty and PropertyRef read and set properties by name, with their types
/// checked, for code that does not know the source's class.
///
/// When a look-up fails, its PropertyError tells the reason and its text explains it. Reading
/// accepts read-only properties of the same value type; no type is converted to another. For code
/// that does not know the type either, an AnyPropertyRef reads and sets by the form of the type.
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

template <class T>
class TypedBindConnection;

/// ReflectionAccess is the untyped part of a look-up.
class DATABINDING_API ReflectionAccess {
 public:
  struct DATABINDING_API Found {
    PropertyError error = PropertyError::None;
    /// Is true for a property that was filed as read-only.
    bool isReadOnly = false;
    /// The property itself, which is of the wanted type. It is good until any other code runs.
    PropertyBase* property = nullptr;
    /// The accessor that was filed by hand, where there is no such property.
    RepeatingCallbackMemento accessor;

    [[nodiscard]] bool HasAccessor() const noexcept {
      return property != nullptr || !accessor.IsEmpty();
    }
    /// Returns true when nobody sets the property now.
    [[nodiscard]] bool IsReadOnly() const;
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
  /// Finds the accessor of a property of any type.
  [[nodiscard]] static Found FindAny(const IDataSource* source, const VtrString& name);
  /// Returns the text for an error of these look-ups. Null stands for any type.
  [[nodiscard]] static VtrString Explain(PropertyError error, const IDataSource* source,
                                         const VtrString& name, const runtime_type_base* wanted);
  /// Returns the text for a property whose source is gone, or going.
  [[nodiscard]] static VtrString ExplainGone(const VtrString& name,
                                             const runtime_type_base* wanted);
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
  static void File(IReflectable& table, PropertyBase& property, const runtime_type_base& type,
                   bool isTableComplete);
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

namespace details {

/// PropertyRefBase is what a PropertyRef and an AnyPropertyRef have in common.
class DATABINDING_API PropertyRefBase {
 public:
  /// Returns the name that was looked up. The property shares its text, if it was found.
  [[nodiscard]] const VtrString& Name() const noexcept { return name; }
  /// Tells why the property was not found; None when it was found, also after it has gone.
  [[nodiscard]] PropertyError Error() const noexcept { return error; }
  /// Explains why the property was not found. The text is empty when it was found.
  [[nodiscard]] const VtrString& Text() const noexcept { return text; }
  /// Returns true for a property that only its source may set, and for computed ones.
  [[nodiscard]] bool IsReadOnly() const;
  /// Returns true when the property was found.
  explicit operator bool() const noexcept { return error == PropertyError::None; }

  /// Returns true while the property can be read: it was found and is not gone since.
  [[nodiscard]] bool IsThere() const { return Access() != nullptr; }
  /// Runs the callback whenever one of the other properties is announced that the property's
  /// validator reads: what Check says may be different from then on.
  Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) const {
    const PropertyBase* const property = Access();
    return property == nullptr ? Subscription() : property->SubscribeToChecks(callback);
  }

 protected:
  /// Takes what a look-up has found. `wanted` is the type that was looked for, or null for any.
  PropertyRefBase(const IDataSource* source, const VtrString& propertyName,
                  const ReflectionAccess::Found& found, const runtime_type_base* wanted);

  /// Returns the property, or null if it was not found or is gone.
  [[nodiscard]] PropertyBase* Access() const {
    PropertyBase* const living = known.Get();
    return living != nullptr ? living : AskAccessor();
  }
  /// Returns the result for a property that was not found, or that has gone since.
  template <class Result>
  [[nodiscard]] Result Failure(const runtime_type_base* wanted) const {
    Result result;
    result.error = error == PropertyError::None ? PropertyError::Absent : error;
    result.text = error == PropertyError::None ? WhyGone(wanted) : text;
    return result;
  }

 private:
  [[nodiscard]] PropertyBase* AskAccessor() const;
  [[nodiscard]] VtrString WhyGone(const runtime_type_base* wanted) const {
    return whyAbsent.IsEmpty() ? ReflectionAccess::ExplainGone(name, wanted) : whyAbsent;
  }

  VtrString name;
  /// Leads to the property, or is null where an accessor was filed by hand.
  WeakPtr<PropertyBase> known;
  PropertyAccessor accessor;
  PropertyError error;
  bool isReadOnly;
  VtrString text;
  /// Explains why a source that shows records has no value for a while.
  VtrString whyAbsent;
};

}  // namespace details

/// A PropertyRef is a property that was found by name. It may be kept: it answers "absent" once the
/// property is gone.
///
/// A PropertyRef<const int> reads a property of type int and cannot set it. Therefore a const
/// source gives one, too.
template <class T>
class PropertyRef : public details::PropertyRefBase {
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
      : PropertyRefBase(source, propertyName, found, &runtime_type<Value>::Get()) {}

  /// Returns a copy of the value, or the reason why there is none.
  [[nodiscard]] PropertyValue<Value> Get() const {
    const auto* property = Property();
    if (property == nullptr) return Failed<PropertyValue<Value>>();
    return {property->GetValue(), PropertyError::None, {}};
  }
  /// Sets the value as the property's own Set does: listeners run before this returns.
  // NOLINTNEXTLINE(modernize-use-nodiscard): setting is done for its effect
  SetResult Set(T value) const requires(!std::is_const_v<T>) {
    auto* property = Property();
    return property == nullptr ? Failed<SetResult>() : property->SetValue(std::move(value));
  }
  /// Says what Set would answer, and sets nothing: it asks the property's validator.
  [[nodiscard]] SetResult Check(const Value& value) const {
    const auto* property = Property();
    return property == nullptr ? Failed<SetResult>() : property->CheckValue(value);
  }

 private:
  friend class details::TypedBindConnection<Value>;

  /// The look-up has made sure of the type.
  [[nodiscard]] details::IProperty<Value>* Property() const {
    return static_cast<details::IProperty<Value>*>(Access());
  }
  template <class Result>
  [[nodiscard]] Result Failed() const {
    return Failure<Result>(&runtime_type<Value>::Get());
  }
};

/// An AnyPropertyRef is a property of any type that was found by name. It reads and sets it by the
/// form of its type (ValueForm.h), and may be kept like a PropertyRef. Reading a number allocates
/// nothing.
class DATABINDING_API AnyPropertyRef : public details::PropertyRefBase {
 public:
  /// The property is read as a value of this type.
  using Value = DataBinding::Value;

  /// Looks the property up, once. The source may be null and may end later.
  AnyPropertyRef(IDataSource* source, const VtrString& propertyName)
      : AnyPropertyRef(source, propertyName,
                       details::ReflectionAccess::FindAny(source, propertyName)) {}
  /// Takes what such a look-up has just found.
  AnyPropertyRef(const IDataSource* source, const VtrString& propertyName,
                 const details::ReflectionAccess::Found& found)
      : PropertyRefBase(source, propertyName, found, nullptr) {}

  /// Returns the value. Where the property's type has no form, the error is WrongType and the text
  /// names the type, so that whoever leaves the property out can say so.
  [[nodiscard]] PropertyValue<Value> Read() const {
    const auto* property = Access();
    return property == nullptr ? Failure<PropertyValue<Value>>(nullptr) : property->ReadValue();
  }
  /// Returns the text of the value, which for a type without a form is its name: "<Color>".
  [[nodiscard]] PropertyValue<VtrString> ReadText() const;
  /// These set the value as the property's own Set does, with its results and texts. A value or a
  /// text that does not convert changes nothing. The error is WrongType, with both types in the
  /// text, or Refused where a text is not of the form, or is no name of the enumeration.
  ///@{
  // NOLINTNEXTLINE(modernize-use-nodiscard): setting is done for its effect
  SetResult Write(const Value& value) const { return Take(value, details::Purpose::Set); }
  // NOLINTNEXTLINE(modernize-use-nodiscard): as above
  SetResult WriteText(const VtrString& written) const {
    return TakeText(written, details::Purpose::Set);
  }
  ///@}
  /// These say what Write and WriteText would answer, and set nothing.
  ///@{
  [[nodiscard]] SetResult Check(const Value& value) const {
    return Take(value, details::Purpose::Check);
  }
  [[nodiscard]] SetResult CheckText(const VtrString& written) const {
    return TakeText(written, details::Purpose::Check);
  }
  ///@}
  /// Returns the kind of values that the property's type has: Unsigned for unsigned numbers, though
  /// most of them are read as Signed. Nothing stands for a type without a form, and for a property
  /// that is not there.
  [[nodiscard]] ValueKind Kind() const;

 private:
  [[nodiscard]] SetResult Take(const Value& value, details::Purpose purpose) const;
  [[nodiscard]] SetResult TakeText(const VtrString& written, details::Purpose purpose) const;
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

/// Finds and reads a property of any type by its form, as an AnyPropertyRef does. These keep
/// nothing of the property, so they suit code that writes out whatever it finds, once.
///@{
[[nodiscard]] DATABINDING_API PropertyValue<Value> ReadProperty(const IDataSource* source,
                                                                const VtrString& name);
[[nodiscard]] DATABINDING_API PropertyValue<VtrString> ReadPropertyText(const IDataSource* source,
                                                                        const VtrString& name);
///@}

/// Calls visit(value) with the property's value if its type is one of the listed ones, and tells
/// whether it was. This serves code that shows some types in a way of its own; ReadProperty takes
/// any type.
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

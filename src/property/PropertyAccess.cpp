// SPDX-License-Identifier: Apache-2.0
// This file finds properties by name in reflection tables, and explains why one was not found,
// cannot be set or is gone.

#include "DataBinding/property/PropertyAccess.h"

#include <utility>

#include "DataBinding/property/details/ShownRecord.h"

namespace DataBinding {

namespace details {

namespace {

/// Tells whether a filed property is gone. Nothing is taken out of a table, so a property that is
/// gone is still named there.
bool IsGone(const RepeatingCallbackMemento& accessor) {
  RepeatingCallbackBase untyped;
  untyped.SetMemento(accessor);
  return untyped && untyped.IsCancelled();
}

/// Returns the property that an accessor filed by hand leads to, or null if there is none now.
const PropertyBase* Ask(const RepeatingCallbackMemento& accessor) {
  PropertyAccessor typed;
  typed.SetMemento(accessor);
  return typed();
}

/// Tells whether a property says itself that nobody sets it now. It may say so for a while.
bool IsReadOnlyNow(const PropertyBase* property) {
  return property != nullptr && property->Type().IsReadOnly();
}

}  // namespace

bool ReflectionAccess::Found::IsReadOnly() const {
  return isReadOnly || IsReadOnlyNow(property != nullptr ? property : Ask(accessor));
}

ReflectionAccess::Found ReflectionAccess::Find(const IDataSource* source, const VtrString& name,
                                               const runtime_type_base& plain,
                                               const runtime_type_base& readOnly) {
  Found found;
  found.error = source == nullptr ? PropertyError::NoSource : PropertyError::None;
  if (source == nullptr) return found;
  const auto& type = source->GetDelegateType(name);
  found.isReadOnly = !AreSameType(plain, type) && AreSameType(readOnly, type);
  if (!found.isReadOnly && !AreSameType(plain, type)) {
    const bool isKnown = !runtime_type<void>::Get().IsSameType(&type);
    found.error = isKnown ? PropertyError::WrongType : PropertyError::Absent;
    return found;
  }
  FindAccessor(*source, name, found.isReadOnly ? readOnly : plain, found);
  const PropertyBase* const byHand = found.property == nullptr ? Ask(found.accessor) : nullptr;
  if (byHand != nullptr && !AreSameType(plain, byHand->Type()) &&
      !AreSameType(readOnly, byHand->Type())) {
    found.accessor = {};
  }
  return found;
}

ReflectionAccess::Found ReflectionAccess::FindAny(const IDataSource* source,
                                                  const VtrString& name) {
  Found found;
  found.error = source == nullptr ? PropertyError::NoSource : PropertyError::None;
  if (source == nullptr) return found;
  const auto& type = source->GetDelegateType(name);
  found.isReadOnly = type.IsReadOnly();
  if (type.IsFunction()) {
    found.error = PropertyError::WrongType;
  } else if (runtime_type<void>::Get().IsSameType(&type)) {
    found.error = PropertyError::Absent;
  } else {
    FindAccessor(*source, name, type, found);
  }
  return found;
}

void ReflectionAccess::FindAccessor(const IReflectable& table, const VtrString& name,
                                    const runtime_type_base& wanted, Found& found) {
  const LendingScope lending(table.reflectable);
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): a look-up changes nothing
  auto answer = const_cast<IReflectable&>(table)._GetDelegate({{name, wanted}});
  // Only properties lend their accessors. An override may answer with one of another name.
  auto* const property = static_cast<PropertyBase*>(answer.second.Lender());
  if (property != nullptr && AreSameType(wanted, property->Type())) {
    found.property = property;
    return;
  }
  found.accessor = std::move(answer.second);
  if (IsGone(found.accessor)) found.error = PropertyError::Absent;
}

void ReflectionAccess::File(IReflectable& table, PropertyBase& property,
                            const runtime_type_base& type, bool isTableComplete) {
  if (isTableComplete) table.reflectable.ReserveNames();
  const FilingScope filing(property, type);
  RepeatingCallbackMemento accessor;
  accessor.Lend(property);
  table._AddDelegate(property.Name(), accessor, type);
}

VtrString ReflectionAccess::NameOf(const IDataSource& source) {
  if (IsEnding(source)) return {};
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): asking for the name changes nothing
  return const_cast<IDataSource&>(source).GetDataSourceName();
}

bool ReflectionAccess::HasLiving(const IReflectable& table, const VtrString& name) {
  return table.reflectable.FindChained(name) != nullptr;
}

VtrString ReflectionAccess::Explain(PropertyError error, const IDataSource* source,
                                    const VtrString& name, const runtime_type_base* wanted) {
  const auto nameOf = [](const runtime_type_base& type) {
    return VtrString::FromUtf8(type.GetTypeName());
  };
  const VtrString wantedType = wanted == nullptr ? L"any" : nameOf(*wanted);
  VtrString text;
  if (source == nullptr) {
    return text.Format(L"There is no data source to have a property \"%s\" of type %s.", name,
                       wantedType);
  }
  const VtrString sourceName = NameOf(*source);
  const VtrString actualType = nameOf(source->GetDelegateType(name));
  switch (error) {
    case PropertyError::Absent:
      return text.Format(
          L"Data source \"%s\" has no property \"%s\" (wanted type %s, actual none).", sourceName,
          name, wantedType);
    case PropertyError::WrongType:
      return text.Format(
          wanted == nullptr ? L"Member \"%s\" of data source \"%s\" has type %s and is no property."
                            : L"Property \"%s\" of data source \"%s\" has type %s, not %s.",
          name, sourceName, actualType, wantedType);
    case PropertyError::ReadOnly:
      return text.Format(
          L"Property \"%s\" of data source \"%s\" can be read, but only its data source sets it.",
          name, sourceName);
    default:
      return text.Format(
          L"Property \"%s\" of data source \"%s\" has type %s but no accessor for %s.", name,
          sourceName, actualType, wantedType);
  }
}

VtrString ReflectionAccess::ExplainGone(const VtrString& name, const runtime_type_base* wanted) {
  return VtrString().Format(
      L"Property \"%s\" (wanted type %s) is gone with its data source.", name,
      wanted == nullptr ? L"any" : VtrString::FromUtf8(wanted->GetTypeName()));
}

PropertyRefBase::PropertyRefBase(const IDataSource* source, const VtrString& propertyName,
                                 const ReflectionAccess::Found& found,
                                 const runtime_type_base* wanted)
    : name(propertyName), error(found.error), isReadOnly(found.isReadOnly) {
  if (found.property != nullptr) known = found.property->AsWeakPtr();
  if (known && known->Name() == name) name = known->Name();
  accessor.SetMemento(found.accessor);
  if (error == PropertyError::None && !known && !accessor) error = PropertyError::NoAccessor;
  if (error == PropertyError::None) {
    const ShownRecord* const record = known ? nullptr : ShownRecord::Of(source);
    if (record != nullptr) {
      whyAbsent = ExplainAbsence(*record, ReflectionAccess::NameOf(*source), name);
    }
    return;
  }
  accessor = {};
  text = ReflectionAccess::Explain(error, source, name, wanted);
}

PropertyBase* PropertyRefBase::AskAccessor() const { return accessor(); }

bool PropertyRefBase::IsReadOnly() const { return isReadOnly || IsReadOnlyNow(Access()); }

}  // namespace details

PropertyValue<Value> ReadProperty(const IDataSource* source, const VtrString& name) {
  const auto found = details::ReflectionAccess::FindAny(source, name);
  if (found.property != nullptr) return found.property->ReadValue();
  return AnyPropertyRef(source, name, found).Read();
}

PropertyValue<VtrString> ReadPropertyText(const IDataSource* source, const VtrString& name) {
  const auto found = details::ReflectionAccess::FindAny(source, name);
  if (found.property != nullptr) return {found.property->ReadText(), PropertyError::None, {}};
  return AnyPropertyRef(source, name, found).ReadText();
}

PropertyValue<VtrString> AnyPropertyRef::ReadText() const {
  const auto* const property = Access();
  if (property == nullptr) return Failure<PropertyValue<VtrString>>(nullptr);
  return {property->ReadText(), PropertyError::None, {}};
}

SetResult AnyPropertyRef::Take(const Value& value, details::Purpose purpose) const {
  auto* const property = Access();
  return property == nullptr ? Failure<SetResult>(nullptr) : property->TakeValue(value, purpose);
}

SetResult AnyPropertyRef::TakeText(const VtrString& written, details::Purpose purpose) const {
  auto* const property = Access();
  return property == nullptr ? Failure<SetResult>(nullptr) : property->TakeText(written, purpose);
}

ValueKind AnyPropertyRef::Kind() const {
  const auto* const property = Access();
  return property == nullptr ? ValueKind::Nothing : property->Kind();
}

}  // namespace DataBinding

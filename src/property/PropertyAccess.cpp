// SPDX-License-Identifier: Apache-2.0
// This file finds properties by name in reflection tables, and explains why one was not found,
// cannot be set or is gone.

#include "DataBinding/property/PropertyAccess.h"

#include <utility>

namespace DataBinding::details {

namespace {

/// Tells whether a filed property is gone. Nothing is taken out of a table, so a property that is
/// gone is still named there.
bool IsGone(const RepeatingCallbackMemento& accessor) {
  RepeatingCallbackBase untyped;
  untyped.SetMemento(accessor);
  return untyped && untyped.IsCancelled();
}

}  // namespace

RepeatingCallbackMemento ReflectionAccess::Found::Accessor() const {
  if (property == nullptr) return accessor;
  RepeatingCallbackMemento lent;
  lent.Lend(*property);
  return RepeatingCallbackMemento(lent);
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

void ReflectionAccess::File(IReflectable& table, PropertyBase& property, bool isTableComplete) {
  if (isTableComplete) table.reflectable.ReserveNames();
  RepeatingCallbackMemento accessor;
  accessor.Lend(property);
  table._AddDelegate(property.Name(), accessor, property.Type());
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
                                    const VtrString& name, const runtime_type_base& wanted) {
  const VtrString wantedType = VtrString::FromUtf8(wanted.GetTypeName());
  VtrString text;
  if (source == nullptr) {
    return text.Format(L"There is no data source to have a property \"%s\" of type %s.", name,
                       wantedType);
  }
  const VtrString sourceName = NameOf(*source);
  const VtrString actualType = VtrString::FromUtf8(source->GetDelegateType(name).GetTypeName());
  switch (error) {
    case PropertyError::Absent:
      return text.Format(
          L"Data source \"%s\" has no property \"%s\" (wanted type %s, actual none).", sourceName,
          name, wantedType);
    case PropertyError::WrongType:
      return text.Format(L"Property \"%s\" of data source \"%s\" has type %s, not %s.", name,
                         sourceName, actualType, wantedType);
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

VtrString ReflectionAccess::ExplainGone(const VtrString& name, const runtime_type_base& wanted) {
  return VtrString().Format(L"Property \"%s\" (wanted type %s) is gone with its data source.", name,
                            VtrString::FromUtf8(wanted.GetTypeName()));
}

}  // namespace DataBinding::details

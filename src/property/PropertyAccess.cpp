// SPDX-License-Identifier: Apache-2.0
// This file finds properties by name in reflection tables, and explains why one was not found,
// cannot be set or is gone.

#include "DataBinding/property/PropertyAccess.h"

#include <algorithm>

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

ReflectionAccess::Found ReflectionAccess::Find(const IDataSource* source, const VtrString& name,
                                               const runtime_type_base& plain,
                                               const runtime_type_base& readOnly) {
  if (source == nullptr) return {PropertyError::NoSource, {}, false};
  const auto& type = source->GetDelegateType(name);
  const bool isReadOnly = readOnly.IsSameType(&type);
  if (!isReadOnly && !plain.IsSameType(&type)) {
    const bool isKnown = !runtime_type<void>::Get().IsSameType(&type);
    return {isKnown ? PropertyError::WrongType : PropertyError::Absent, {}, false};
  }
  auto accessor = source->GetDelegateMemento(name, isReadOnly ? readOnly : plain);
  if (IsGone(accessor)) return {PropertyError::Absent, {}, false};
  return {PropertyError::None, std::move(accessor), isReadOnly};
}

VtrString ReflectionAccess::NameOf(const IDataSource& source) {
  if (IsEnding(source)) return {};
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): asking for the name changes nothing
  return const_cast<IDataSource&>(source).GetDataSourceName();
}

bool ReflectionAccess::HasLiving(const IReflectable& table, const VtrString& name) {
  return std::ranges::any_of(table.reflectable, [&](const auto& member) {
    const auto& [filed, item] = member;
    return filed == name && !item.delegate.IsEmpty() && !item.type.get().IsFunction() &&
           !IsGone(item.delegate);
  });
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

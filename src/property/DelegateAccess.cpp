// SPDX-License-Identifier: Apache-2.0
// This file finds delegates by name, and explains why one was not found or cannot be called.

#include "DataBinding/property/DelegateAccess.h"

#include <utility>

#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding::details {

namespace {

/// Tells why a source gives no delegate of a type. A delegate whose target is gone stays in the
/// table, and counts as absent.
PropertyError ErrorOf(const runtime_type_base& actual, const runtime_type_base& wanted,
                      const RepeatingCallbackBase& found) {
  if (found) return found.IsCancelled() ? PropertyError::Absent : PropertyError::None;
  if (wanted.IsSameType(&actual)) return PropertyError::NoAccessor;
  return runtime_type<void>::Get().IsSameType(&actual) ? PropertyError::Absent
                                                       : PropertyError::WrongType;
}

VtrString Explain(PropertyError error, IDataSource& source, const VtrString& name,
                  const runtime_type_base& actual, const runtime_type_base& wanted) {
  const VtrString sourceName = ReflectionAccess::NameOf(source);
  const VtrString wantedType = VtrString::FromUtf8(wanted.GetTypeName());
  VtrString text;
  switch (error) {
    case PropertyError::Absent:
      return text.Format(L"Data source \"%s\" has no delegate \"%s\" (wanted type %s).", sourceName,
                         name, wantedType);
    case PropertyError::WrongType:
      return text.Format(L"\"%s\" of data source \"%s\" has type %s, not %s.", name, sourceName,
                         VtrString::FromUtf8(actual.GetTypeName()), wantedType);
    default:
      return text.Format(L"\"%s\" of data source \"%s\" has type %s but nothing to call.", name,
                         sourceName, wantedType);
  }
}

}  // namespace

DelegateRefBase::DelegateRefBase(IDataSource* source, VtrString delegateName)
    : name(std::move(delegateName)) {
  if (source != nullptr) sourceLiveness = source->GetLiveness();
}

void DelegateRefBase::Judge(IDataSource* source, const runtime_type_base& wanted,
                            const RepeatingCallbackBase& found) {
  if (source == nullptr) {
    error = PropertyError::NoSource;
    text.Format(L"There is no data source to have a delegate \"%s\" of type %s.", name,
                VtrString::FromUtf8(wanted.GetTypeName()));
    return;
  }
  const runtime_type_base& actual =
      IsSourceThere() ? source->GetDelegateType(name) : runtime_type<void>::Get();
  error = ErrorOf(actual, wanted, found);
  if (error != PropertyError::None) text = Explain(error, *source, name, actual, wanted);
}

VtrString DelegateRefBase::GoneText(const runtime_type_base& wanted) const {
  return VtrString().Format(L"Delegate \"%s\" (wanted type %s) is gone with its data source.", name,
                            VtrString::FromUtf8(wanted.GetTypeName()));
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/AnyList.h"
#include "DataBinding/lists/details/ListStorage.h"

namespace DataBinding::details {

namespace {

constexpr auto* isNoValue = L"It is a list, which is no value.";

}  // namespace

ListProperty::ListProperty(DataSourceImpl& itsSource, PropertyName propertyName,
                           bool isReadOnlyList)
    : PropertyBase(itsSource, propertyName), isReadOnly(isReadOnlyList) {
  File(Type());
}

const runtime_type_base& ListProperty::Type() const {
  if (isReadOnly) return runtime_type<const AnyList>::Get();
  return runtime_type<AnyList>::Get();
}

const runtime_type_base& ListProperty::ValueType() const { return runtime_type<AnyList>::Get(); }

std::unique_ptr<PropertyCopy> ListProperty::CopyFrom(const PropertyBase& /*other*/) {
  return nullptr;
}

PropertyValue<Value> ListProperty::ReadValue() const {
  const SetResult unfit = UnfitResult(PropertyError::WrongType, isNoValue);
  return {{}, unfit.error, unfit.text};
}

VtrString ListProperty::ReadText() const { return ShowFormless(ValueType()); }

SetResult ListProperty::TakeValue(const Value& /*value*/, Purpose /*purpose*/) {
  return UnfitResult(PropertyError::WrongType, isNoValue);
}

SetResult ListProperty::TakeText(const VtrString& /*text*/, Purpose /*purpose*/) {
  return UnfitResult(PropertyError::WrongType, isNoValue);
}

}  // namespace DataBinding::details

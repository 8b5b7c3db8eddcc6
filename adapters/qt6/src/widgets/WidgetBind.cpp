// SPDX-License-Identifier: Apache-2.0
#include "WidgetBind.h"

namespace DataBinding::Qt6 {

namespace {

const wchar_t* DescribeKind(ValueKind kind) {
  switch (kind) {
    case ValueKind::Bool:
      return L"a truth value";
    case ValueKind::Text:
      return L"a text";
    case ValueKind::Nothing:
      return L"of a type without a form";
    default:
      return L"a number";
  }
}

}  // namespace

WidgetBind::WidgetBind(const details::WidgetOps& itsOps, const VtrString& context,
                       const VtrString& source, const VtrString& property)
    : IDataBind(context, source, property), ops(itsOps), bind(context, source, property) {}

Framework::BindStatus WidgetBind::Status() const {
  if (Misfits()) return {Framework::BindStatus::State::WrongType, WhyMisfit()};
  return bind.Status();
}

PropertyValue<Value> WidgetBind::Get() const {
  if (Misfits()) return {{}, PropertyError::WrongType, WhyMisfit()};
  if (!ops.asText) return bind.Get();
  const PropertyValue<VtrString> text = bind.ReadText();
  if (!text) return {{}, text.error, text.text};
  return {Value(*text), PropertyError::None, {}};
}

SetResult WidgetBind::Set(Value value) {
  if (Misfits()) return {false, PropertyError::WrongType, WhyMisfit()};
  return ops.asText ? bind.WriteText(value.ToText()) : bind.Write(value);
}

SetResult WidgetBind::Check(const Value& value) const {
  if (Misfits()) return {false, PropertyError::WrongType, WhyMisfit()};
  return ops.asText ? bind.CheckText(value.ToText()) : bind.Check(value);
}

VtrString WidgetBind::WhyMisfit() const {
  return VtrString().Format(
      L"Property \"%s\" of data source \"%s\" is %s, which the widget does not show.", Path(),
      DataSource(), DescribeKind(bind.Kind()));
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/reflection/Value.h"

#include <type_traits>

#include "DataBinding/reflection/ValueForm.h"

namespace DataBinding {

namespace {

struct TextOf {
  VtrString operator()(std::monostate /*nothing*/) const { return {}; }
  VtrString operator()(const VtrString& text) const { return text; }
  template <class T>
  VtrString operator()(const T& number) const {
    return details::ShowNumber(number);
  }
};

const wchar_t* NameOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::Bool:
      return L"bool";
    case ValueKind::Signed:
      return L"int64";
    case ValueKind::Unsigned:
      return L"uint64";
    case ValueKind::Double:
      return L"double";
    case ValueKind::Text:
      return L"text";
    default:
      return L"nothing";
  }
}

}  // namespace

VtrString Value::ToText() const { return Visit(TextOf()); }

namespace details {

VtrString ExplainMisfit(const Value& value, const runtime_type_base& wanted) {
  constexpr int most = 40;
  const VtrString type = VtrString::FromUtf8(wanted.GetTypeName());
  const VtrString text = value.ToText();
  return VtrString().Format(L"The value \"%.*s%s\" of type %s does not fit type %s.", most, text,
                            text.GetLength() > most ? L"..." : L"", NameOf(value.Kind()), type);
}

PropertyValue<Value> ParseValue(ValueKind kind, const VtrString& text,
                                const runtime_type_base& wanted) {
  const auto parse = [&]<class T>(std::type_identity<T>) -> PropertyValue<Value> {
    const auto parsed = ParseNumberFor<T>(text, wanted);
    if (!parsed) return {{}, parsed.error, parsed.text};
    return {*parsed, PropertyError::None, {}};
  };
  switch (kind) {
    case ValueKind::Bool:
      return parse(std::type_identity<bool>());
    case ValueKind::Signed:
      return parse(std::type_identity<std::int64_t>());
    case ValueKind::Unsigned:
      return parse(std::type_identity<std::uint64_t>());
    case ValueKind::Double:
      return parse(std::type_identity<double>());
    default:
      return {text, PropertyError::None, {}};
  }
}

VtrString ShowFormless(const runtime_type_base& type) {
  return VtrString().Format(L"<%s>", VtrString::FromUtf8(type.GetTypeName()));
}

VtrString ExplainFormless(const runtime_type_base& type) {
  return VtrString().Format(L"Type %s has no form as a value.",
                            VtrString::FromUtf8(type.GetTypeName()));
}

}  // namespace details

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/reflection/RuntimeType.h"

#include "DataBinding/foundation/TypeName.h"

namespace DataBinding {

runtime_type_base::~runtime_type_base() = default;

std::string runtime_type_base::GetTypeName() const {
  std::string text = VtrUtils::ReadableTypeName(typeid(*this));
  const auto first = text.find('<');
  const auto last = text.rfind('>');
  if (first == std::string::npos || last == std::string::npos) return text;
  // Some compilers write a blank between closing brackets: "A<B<C> >".
  const auto end = text.find_last_not_of(' ', last - 1);
  return text.substr(first + 1, end - first);
}

template <>
const runtime_type<void>& runtime_type<void>::Get() {
  return Everlasting();
}

template <>
const runtime_type<void()>& runtime_type<void()>::Get() {
  return Everlasting();
}

template <>
const runtime_type<IDataContext*>& runtime_type<IDataContext*>::Get() {
  return Everlasting();
}

}  // namespace DataBinding

#include "DataBinding/RuntimeType.h"

#include <cstdlib>
#include <memory>

#if defined(__GNUC__)
#include <cxxabi.h>
#endif

namespace DataBinding {

namespace {

std::string Readable(const char* mangled) {
#if defined(__GNUC__)
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
  if (text != nullptr) return text.get();
#endif
  return mangled;
}

}  // namespace

runtime_type_base::~runtime_type_base() = default;

std::string runtime_type_base::GetTypeName() const {
  std::string text = Readable(typeid(*this).name());
  const auto first = text.find('<');
  const auto last = text.rfind('>');
  if (first == std::string::npos || last == std::string::npos) return text;
  const auto end =
      text.find_last_not_of(' ', last - 1);  // "A<B<C> >" is how nested types are spelled
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

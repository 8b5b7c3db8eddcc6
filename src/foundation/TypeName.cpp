// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/TypeName.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#if defined(__GNUC__)
#include <cxxabi.h>
#endif

namespace VtrUtils {

namespace {

/// Replaces the full name of the string class by VtrString, as one writes it.
std::string WithShortString(std::string text) {
  constexpr std::string_view full = "VtrPlatform::VtrStringT<wchar_t>";
  constexpr std::string_view usual = "VtrString";
  for (auto at = text.find(full); at != std::string::npos; at = text.find(full, at)) {
    text.replace(at, full.size(), usual);
  }
  return text;
}

}  // namespace

std::string ReadableTypeName(const std::type_info& type) {
#if defined(__GNUC__)
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  if (text != nullptr) return WithShortString(text.get());
#endif
  return WithShortString(type.name());
}

std::string TypeKey(std::type_index type) {
  std::string key = type.name();
  if (key.find("_GLOBAL__N_") == std::string::npos) return key;
  return key + '@' + std::to_string(reinterpret_cast<std::uintptr_t>(type.name()));
}

}  // namespace VtrUtils

#include "DataBinding/foundation/TypeName.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

#if defined(__GNUC__)
#include <cxxabi.h>
#endif

namespace VtrUtils {

std::string ReadableTypeName(const std::type_info& type) {
#if defined(__GNUC__)
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  if (text != nullptr) return text.get();
#endif
  return type.name();
}

std::string TypeKey(std::type_index type) {
  std::string key = type.name();
  if (key.find("_GLOBAL__N_") == std::string::npos) return key;
  return key + '@' + std::to_string(reinterpret_cast<std::uintptr_t>(type.name()));
}

}  // namespace VtrUtils

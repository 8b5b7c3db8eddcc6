// SPDX-License-Identifier: Apache-2.0
/// These functions give names of types, for messages and for telling types apart across modules.
///
/// The caller owns the returned text, so the text may outlive the module to which the type belongs.
/// Each call allocates a new text. The functions may be called on any thread.
///
///   throw std::logic_error("not a " + ReadableTypeName(typeid(T)));
#pragma once

#include <cstring>
#include <string>
#include <typeindex>
#include <typeinfo>

#include "DataBinding/Export.h"

namespace VtrUtils {

/// Returns the name of a type as a reader would write it: "void (int)". Compilers spell types
/// differently, so the name is to be shown and not to be compared.
[[nodiscard]] DATABINDING_API std::string ReadableTypeName(const std::type_info& type);

/// Returns a text that is the same for one type in all modules and different for different types.
///
/// A type in an anonymous namespace is identified by its address, too, since another file may have
/// a type of that name; its text changes when its module is unloaded and loaded again. Two types
/// get the same text only if they have equal names and are local to static functions with equal
/// names.
[[nodiscard]] DATABINDING_API std::string TypeKey(std::type_index type);

/// Tells whether two descriptions are of one type, even if they come from different modules. The
/// names are compared for libc++, which itself compares only the addresses of the descriptions.
[[nodiscard]] inline bool IsOneType(const std::type_info& one,
                                    const std::type_info& other) noexcept {
#if defined(_LIBCPP_VERSION)
  return one == other || (std::strcmp(one.name(), other.name()) == 0 &&
                          std::strstr(one.name(), "_GLOBAL__N_") == nullptr);
#else
  return one == other;
#endif
}

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::IsOneType;
using VtrUtils::ReadableTypeName;
using VtrUtils::TypeKey;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Names of types, for messages and for telling types apart across modules.
///
/// The texts are owned by whoever asks, so that they outlive the module that a type belongs to.
/// Nothing is kept: each text is allocated anew. Any thread.
///
///   throw std::logic_error("not a " + ReadableTypeName(typeid(T)));
#pragma once

#include <cstring>
#include <string>
#include <typeindex>
#include <typeinfo>

#include "DataBinding/Export.h"

namespace VtrUtils {

/// The type as a reader would write it: "void (int)". How a compiler spells a type differs; show
/// it, do not compare it.
[[nodiscard]] DATABINDING_API std::string ReadableTypeName(const std::type_info& type);

/// A text that is the same for one type in all modules, and differs for two types that have
/// linkage. A name in an anonymous namespace is told apart from the same in another file by where
/// it stands, and so differs after its module was loaded anew. Not told apart are equally named
/// types that are local to equally named static functions.
[[nodiscard]] DATABINDING_API std::string TypeKey(std::type_index type);

/// Tells whether the two are one type, though each may come from a module that has a description
/// of its own. libc++ compares only where the descriptions lie, other libraries the names, too.
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

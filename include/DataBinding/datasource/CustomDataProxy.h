// SPDX-License-Identifier: Apache-2.0
/// CustomDataProxy gives typed access to the values that an application attaches to a provider.
///
/// A key pairs an identifier with the type of its value. The provider does not own the values. A
/// value that is not stored in the provider itself is looked up in the enclosing scopes: see
/// SetCustomData and GetCustomData of IDataSourceProvider.
///
///   constexpr CustomDataKey<Theme> themeKey{Guid{0x2f3c1a90, 0x11d2, 0x4b7e, {1, 2}}};
///   provider.GetCustomData().Set(themeKey, &theme);
///   Theme* inherited = child.GetCustomData().Get(themeKey);
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/Guid.h"

namespace DataBinding {

/// A key joins an identifier to the type of the values that are stored under it. All code must use
/// the same T for one identifier, because a value is read as a T* without a check.
template <class T>
struct CustomDataKey {
  /// All modules that share the values use the same identifier.
  Guid id;
};

class CustomDataProxy {
 public:
  /// Makes a proxy for a provider, which must outlive it. For null, Get and Set answer null.
  explicit CustomDataProxy(IDataSourceProvider* asked) noexcept : provider(asked) {}

  /// Returns the value of this provider or of the nearest enclosing scope that has one, else null.
  template <class T>
  [[nodiscard]] T* Get(const CustomDataKey<T>& key) const {
    return static_cast<T*>(GetRaw(key.id));
  }
  /// Stores a value in this provider and returns the one that it replaces, or null.
  template <class T>
  T* Set(const CustomDataKey<T>& key, T* value) const {
    return static_cast<T*>(SetRaw(key.id, value));
  }

 private:
  [[nodiscard]] DATABINDING_API void* GetRaw(const Guid& id) const;
  DATABINDING_API void* SetRaw(const Guid& id, void* value) const;

  IDataSourceProvider* provider;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Typed access to the values that an application attaches to a provider.
///
/// A key pairs an identifier with the type of its value. Values are not owned and are looked up
/// through the enclosing scopes; see IDataSourceProvider::SetCustomData and GetCustomData.
///
///   constexpr CustomDataKey<Theme> themeKey{Guid{0x2f3c1a90, 0x11d2, 0x4b7e, {1, 2}}};
///   provider.GetCustomData().Set(themeKey, &theme);
///   Theme* inherited = child.GetCustomData().Get(themeKey);
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/Guid.h"

namespace DataBinding {

/// An identifier with the type of the values that are stored under it: T* everywhere, or the
/// value is read as what it is not.
template <class T>
struct CustomDataKey {
  /// The same in all modules that share the values.
  Guid id;
};

class CustomDataProxy {
 public:
  /// For a provider, which must outlive the proxy.
  explicit CustomDataProxy(IDataSourceProvider* asked) noexcept : provider(asked) {}

  /// The value here or in the nearest enclosing scope that has one, else null.
  template <class T>
  [[nodiscard]] T* Get(const CustomDataKey<T>& key) const {
    return static_cast<T*>(GetRaw(key.id));
  }
  /// Stores a value here and returns the former one or null.
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

// SPDX-License-Identifier: Apache-2.0
/// A ScopedValue gives a variable another value during a scope of the code.
///
/// The variable gets its former value back however the scope is left, so it must outlive the scope.
/// The object owns nothing else than that former value, and takes no lock.
///
///   const ScopedValue writing(isWriting, true);
#pragma once

#include <type_traits>
#include <utility>

namespace VtrUtils {

template <class T>
class [[nodiscard]] ScopedValue {
 public:
  /// Sets the new value. The destructor puts the former one back.
  ScopedValue(T& changed, std::type_identity_t<T> value) noexcept
      : variable(changed), before(std::exchange(changed, std::move(value))) {}
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;
  ~ScopedValue() { variable = std::move(before); }

 private:
  T& variable;
  T before;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::ScopedValue;
}  // namespace DataBinding

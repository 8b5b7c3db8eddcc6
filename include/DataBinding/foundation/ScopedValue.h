// SPDX-License-Identifier: Apache-2.0
/// Gives a variable another value during a scope.
///
/// The variable must outlive the scope, and gets its former value back however the scope is left.
/// Owns nothing. For one thread.
///
///   const ScopedValue writing(isWriting, true);
#pragma once

#include <type_traits>
#include <utility>

namespace VtrUtils {

template <class T>
class [[nodiscard]] ScopedValue {
 public:
  /// Sets the value now; the end of the scope gives the former one back.
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

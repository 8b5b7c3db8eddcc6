// SPDX-License-Identifier: Apache-2.0
/// A two-word value, a context and a function, that is copied freely and called as
/// function(context, arguments...).
///
/// Owns nothing: whoever made it keeps the context alive. Calling an empty one does nothing and
/// gives a value-initialised result.
///
///   auto hook = Delegate<void(int)>::To<&Log::Add>(log);
#pragma once

#include <functional>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/Callback.h"

namespace VtrUtils {

template <class Signature>
class Delegate;

template <class Result, class... Args>
class Delegate<Result(Args...)> {
 public:
  /// What is called; it gets the context back as it was given.
  using Function = Result (*)(void* context, Args... args);

  constexpr Delegate() noexcept = default;
  /// Of a context, which may be null, and a function; a null function makes an empty delegate.
  constexpr Delegate(void* boundContext, Function target) noexcept
      : context(boundContext), function(target) {}

  /// Calls a method of an object, or a function that takes a reference to it. A delegate without a
  /// result drops that of the method.
  template <auto Target, class T>
  [[nodiscard]] static Delegate To(T& object) noexcept {
    // The function gives the object its constness back.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    return {const_cast<void*>(static_cast<const void*>(&object)),
            [](void* self, Args... args) -> Result {
              auto& bound = *static_cast<T*>(self);
              if constexpr (std::is_void_v<Result>) {
                static_cast<void>(std::invoke(Target, bound, std::forward<Args>(args)...));
              } else {
                return std::invoke(Target, bound, std::forward<Args>(args)...);
              }
            }};
  }

  /// Calls the function; an empty delegate gives a value-initialised result.
  Result operator()(Args... args) const {
    if (function == nullptr) return details::SkippedResult<Result>();
    return function(context, std::forward<Args>(args)...);
  }
  /// False for an empty delegate.
  explicit constexpr operator bool() const noexcept { return function != nullptr; }
  /// Equal when both words are.
  friend constexpr bool operator==(const Delegate&, const Delegate&) noexcept = default;

 private:
  void* context = nullptr;
  Function function = nullptr;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Delegate;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A Delegate is a value of two words, a context and a function. It is copied freely, and a call of
/// it calls function(context, arguments...).
///
/// It owns nothing: the code that made it has to keep the context alive. Calling an empty delegate
/// does nothing and gives a value-initialised result.
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
  /// The function that is called. It gets the context as it was given.
  using Function = Result (*)(void* context, Args... args);

  constexpr Delegate() noexcept = default;
  /// The context may be null. A null function makes an empty delegate.
  constexpr Delegate(void* boundContext, Function target) noexcept
      : context(boundContext), function(target) {}

  /// Makes a delegate that calls a method of an object, or a function that takes a reference to the
  /// object. A delegate without a result drops the result of the method.
  template <auto Target, class T>
  [[nodiscard]] static Delegate To(T& object) noexcept {
    // The function casts back to T, which is const again where the object is.
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

  /// Calls the function. An empty delegate gives a value-initialised result.
  Result operator()(Args... args) const {
    if (function == nullptr) return details::SkippedResult<Result>();
    return function(context, std::forward<Args>(args)...);
  }
  /// Returns false for an empty delegate.
  explicit constexpr operator bool() const noexcept { return function != nullptr; }
  /// Two delegates are equal when both their words are.
  friend constexpr bool operator==(const Delegate&, const Delegate&) noexcept = default;

 private:
  void* context = nullptr;
  Function function = nullptr;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Delegate;
}  // namespace DataBinding

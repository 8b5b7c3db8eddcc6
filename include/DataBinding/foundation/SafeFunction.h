// SPDX-License-Identifier: Apache-2.0
/// basic_safe_function holds any callable. It is moved and never copied.
///
/// A callable that is not larger than `Words` pointers is kept inside of the object, a larger one
/// on the heap. A call is safe in any case: calling an empty function does nothing and gives a
/// value-initialised result. One object may be used by one thread at a time.
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/Callback.h"

namespace VtrUtils {

template <class Signature, std::size_t Words = 3>
class basic_safe_function;

template <class Result, class... Args, std::size_t Words>
class basic_safe_function<Result(Args...), Words> {
 public:
  basic_safe_function() noexcept = default;
  /// Makes an empty function.
  basic_safe_function(std::nullptr_t) noexcept {}
  /// Holds any callable that fits the signature; it need not be copyable. A null function pointer
  /// or an empty std::function makes an empty function.
  template <class Functor>
  requires(!std::same_as<std::remove_cvref_t<Functor>, basic_safe_function> &&
           std::is_invocable_r_v<Result, std::decay_t<Functor>&, Args...>)
      basic_safe_function(Functor&& functor) {
    using Target = std::decay_t<Functor>;
    if constexpr (details::isNullableFunctor<Target>) {
      if (functor == nullptr) return;
    }
    if constexpr (Inline<Target>::value) {
      ::new (static_cast<void*>(storage)) Target(std::forward<Functor>(functor));
      actions = &inlineActions<Target>;
    } else {
      ::new (static_cast<void*>(storage)) Target*(new Target(std::forward<Functor>(functor)));
      actions = &heapActions<Target>;
    }
  }
  /// Takes the callable over and leaves the other function empty.
  basic_safe_function(basic_safe_function&& other) noexcept { TakeFrom(other); }
  /// Ends the callable that this function holds, then takes the other's over.
  basic_safe_function& operator=(basic_safe_function&& other) noexcept {
    if (this != &other) {
      Reset();
      TakeFrom(other);
    }
    return *this;
  }
  basic_safe_function(const basic_safe_function&) = delete;
  basic_safe_function& operator=(const basic_safe_function&) = delete;
  ~basic_safe_function() { Reset(); }

  /// Calls the callable. An empty function gives a value-initialised result.
  Result operator()(Args... args) {
    if (actions == nullptr) return details::SkippedResult<Result>();
    return actions->run(storage, std::forward<Args>(args)...);
  }
  /// Returns false for an empty function.
  explicit operator bool() const noexcept { return actions != nullptr; }

 private:
  static constexpr std::size_t alignment = alignof(void*);

  struct Actions {
    Result (*run)(void* storage, details::CallbackArgument<Args>... args);
    void (*move)(void* from, void* to) noexcept;
    void (*destroy)(void* storage) noexcept;
  };
  template <class Target>
  static constexpr bool fits = sizeof(Target) <= Words * sizeof(void*);
  template <class Target>
  using Inline = std::bool_constant<fits<Target> && alignment % alignof(Target) == 0 &&
                                    std::is_nothrow_move_constructible_v<Target>>;

  template <class Target>
  static Result Run(Target& target, details::CallbackArgument<Args>... args) {
    if constexpr (std::is_void_v<Result>) {
      std::invoke(target, std::forward<Args>(args)...);
    } else {
      return std::invoke(target, std::forward<Args>(args)...);
    }
  }
  template <class Kept>
  static Kept& As(void* storage) noexcept {
    return *std::launder(static_cast<Kept*>(storage));
  }

  template <class Target>
  static constexpr Actions inlineActions{
      [](void* storage, details::CallbackArgument<Args>... args) -> Result {
        return Run(As<Target>(storage), std::forward<Args>(args)...);
      },
      [](void* from, void* to) noexcept {
        ::new (to) Target(std::move(As<Target>(from)));
        As<Target>(from).~Target();
      },
      [](void* storage) noexcept { As<Target>(storage).~Target(); }};

  template <class Target>
  static constexpr Actions heapActions{
      [](void* storage, details::CallbackArgument<Args>... args) -> Result {
        return Run(*As<Target*>(storage), std::forward<Args>(args)...);
      },
      [](void* from, void* to) noexcept { ::new (to) Target*(As<Target*>(from)); },
      [](void* storage) noexcept { delete As<Target*>(storage); }};

  void TakeFrom(basic_safe_function& other) noexcept {
    if (other.actions != nullptr) other.actions->move(other.storage, storage);
    actions = std::exchange(other.actions, nullptr);
  }
  void Reset() noexcept {
    if (actions != nullptr) std::exchange(actions, nullptr)->destroy(storage);
  }

  const Actions* actions = nullptr;
  alignas(alignment) std::byte storage[Words == 0 ? sizeof(void*) : Words * sizeof(void*)];
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::basic_safe_function;
}  // namespace DataBinding

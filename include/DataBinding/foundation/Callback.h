// SPDX-License-Identifier: Apache-2.0
/// A callback has a signature and holds any callable that fits it. A RepeatingCallback is copied
/// freely and run many times, a OneShotCallback is moved and run once.
///
/// Making a callback allocates once. Copying allocates nothing, since copies share the callable. A
/// call keeps the callable alive until it returns, even if the callback is destroyed meanwhile.
///
/// Calling a callback that is null, or whose target is gone (see BindWeak), does nothing and gives
/// a value-initialised result. If the result type has no such value, std::bad_function_call is
/// thrown.
///
/// A callback may be handed to another thread. If two threads call it at the same time, both are in
/// the callable at the same time.
///
///   RepeatingCallback<int(int)> twice = [](int x) { return 2 * x; };
///   OneShotCallback<void(std::unique_ptr<Job>)> run = [](std::unique_ptr<Job> job) { ... };
#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "DataBinding/foundation/details/BindState.h"

namespace VtrUtils {

namespace details {

/// The type in which an argument is passed to the invoke function: scalars are passed by value,
/// everything else by reference.
template <class T>
using CallbackArgument = std::conditional_t<std::is_scalar_v<T> || std::is_reference_v<T>, T, T&&>;

/// A callable that can tell whether its target is gone.
template <class Functor>
concept Cancellable = requires(const Functor& functor) {
  { functor.IsCancelled() } -> std::convertible_to<bool>;
  { functor.MaybeValid() } -> std::convertible_to<bool>;
};

template <class Functor>
inline constexpr bool isNullableFunctor =
    std::is_pointer_v<Functor> || std::is_member_pointer_v<Functor>;
template <class Signature>
inline constexpr bool isNullableFunctor<std::function<Signature>> = true;

/// Returns the result of a call that is skipped.
template <class Result>
Result SkippedResult() {
  if constexpr (std::is_void_v<Result>) {
    return;
  } else if constexpr (std::is_default_constructible_v<Result>) {
    return Result();
  } else {
    throw std::bad_function_call();
  }
}

template <class Functor>
class BoundFunctor final : public BindStateBase {
 public:
  template <class Source>
  BoundFunctor(InvokeFunction onInvoke, const Traits& itsTraits, Source&& source)
      : BindStateBase(onInvoke, &Destroy, itsTraits), functor(std::forward<Source>(source)) {}

  static Functor& Of(const BindStateBase* state) noexcept {
    return static_cast<const BoundFunctor*>(state)->functor;
  }
  static constexpr CancellationQuery Query() noexcept {
    if constexpr (Cancellable<Functor>) {
      return &Ask;
    } else {
      return nullptr;
    }
  }

 private:
  static void Destroy(const BindStateBase* state) {
    delete static_cast<const BoundFunctor*>(state);
  }
  static bool Ask(const BindStateBase* state, CancellationQueryMode mode) {
    return mode == CancellationQueryMode::IsCancelled ? Of(state).IsCancelled()
                                                      : Of(state).MaybeValid();
  }

  mutable Functor functor;
};

/// Makes and calls the states of one signature.
template <class Signature>
struct Invoker;

template <class Result, class... Args>
struct Invoker<Result(Args...)> {
  using Function = Result (*)(const BindStateBase*, CallbackArgument<Args>...);

  template <class Functor>
  static constexpr bool fits = std::is_invocable_r_v<Result, Functor, Args...>;

  /// Target is `Functor&` for a callable that is called again, `Functor&&` for the last call.
  template <class Target>
  static Result Run(const BindStateBase* state, CallbackArgument<Args>... args) {
    auto& functor = BoundFunctor<std::remove_cvref_t<Target>>::Of(state);
    if constexpr (std::is_void_v<Result>) {
      std::invoke(static_cast<Target>(functor), std::forward<Args>(args)...);
    } else {
      return std::invoke(static_cast<Target>(functor), std::forward<Args>(args)...);
    }
  }

  static const std::type_info& Signature() noexcept { return typeid(Result(Args...)); }
  static constexpr BindStateBase::CallLoop Loop() noexcept {
    if constexpr (std::same_as<Result(Args...), void()>) {
      return &MakeCalls;
    } else {
      return nullptr;
    }
  }
  /// Each module has its own, or the loader would not unload a plug-in that is built with all
  /// symbols visible.
  template <class Functor>
  DATABINDING_MODULE_LOCAL static constexpr BindStateBase::Traits traits{
      BoundFunctor<Functor>::Query(), &Signature, Loop(), nullptr};

  template <class Target, class Source>
  static comlike_ptr<BindStateBase> Bind(Source&& source) {
    using Functor = std::remove_cvref_t<Target>;
    // A function by its bare name is never null, and g++ warns of the comparison.
    if constexpr (isNullableFunctor<Functor> &&
                  !std::is_function_v<std::remove_reference_t<Source>>) {
      if (source == nullptr) return {};
    }
    const auto invoke = reinterpret_cast<BindStateBase::InvokeFunction>(&Run<Target>);
    return comlike_ptr<BindStateBase>(
        new BoundFunctor<Functor>(invoke, traits<Functor>, std::forward<Source>(source)));
  }

  static Result Call(const comlike_ptr<BindStateBase>& state, CallbackArgument<Args>... args) {
    if (!state) return SkippedResult<Result>();
    return CallOf(*state, std::forward<Args>(args)...);
  }
  /// Calls the state's function. The caller keeps the state alive.
  static Result CallOf(const BindStateBase& state, CallbackArgument<Args>... args) {
    return reinterpret_cast<Function>(state.Invoke())(&state, std::forward<Args>(args)...);
  }
};

}  // namespace details

template <class Signature>
class RepeatingCallback;

template <class Result, class... Args>
class RepeatingCallback<Result(Args...)> : public details::RepeatingCallbackBase {
  using Invoker = details::Invoker<Result(Args...)>;

 public:
  RepeatingCallback() noexcept = default;
  /// Makes a null callback.
  RepeatingCallback(std::nullptr_t) noexcept {}
  /// Takes over a state of this signature; a null one makes a null callback.
  explicit RepeatingCallback(comlike_ptr<details::BindStateBase> adopted) noexcept
      : RepeatingCallbackBase(std::move(adopted)) {}
  /// Holds a copy of any callable that fits the signature. A null function pointer or an empty
  /// std::function makes a null callback.
  template <class Functor>
  requires(!std::derived_from<std::remove_cvref_t<Functor>, details::OneShotCallbackBase> &&
           Invoker::template fits<std::decay_t<Functor>&>) RepeatingCallback(Functor&& functor)
      : RepeatingCallbackBase(
            Invoker::template Bind<std::decay_t<Functor>&>(std::forward<Functor>(functor))) {}

  /// Calls the callable and keeps it alive until it returns. A null callback gives a
  /// value-initialised result.
  Result operator()(Args... args) const {
    const auto keep = state;
    return Invoker::Call(keep, std::forward<Args>(args)...);
  }
  /// Shares the callable that the memento holds. If that has another signature, the callback
  /// becomes null.
  void SetMemento(const RepeatingCallbackMemento& memento) {
    RepeatingCallbackBase::SetMemento(memento);
    if (state && !state->FitsSignature(typeid(Result(Args...)))) state = {};
  }
};

template <class Signature>
class OneShotCallback;

/// A OneShotCallback runs once and is null from then on. It is moved and never copied, so it may
/// hold a callable that can only be moved. The callable is released as soon as it has run.
template <class Result, class... Args>
class OneShotCallback<Result(Args...)> : public details::OneShotCallbackBase {
  using Invoker = details::Invoker<Result(Args...)>;

 public:
  OneShotCallback() noexcept = default;
  /// Makes a null callback.
  OneShotCallback(std::nullptr_t) noexcept {}
  /// Takes over a state of this signature; a null one makes a null callback.
  explicit OneShotCallback(comlike_ptr<details::BindStateBase> adopted) noexcept
      : OneShotCallbackBase(std::move(adopted)) {}
  /// Shares the callable of the repeating callback.
  OneShotCallback(RepeatingCallback<Result(Args...)> repeating) noexcept
      : OneShotCallbackBase(std::move(repeating)) {}
  /// Holds any callable that fits the signature, which is moved in where it is given as a
  /// temporary.
  template <class Functor>
  requires(!std::derived_from<std::remove_cvref_t<Functor>, details::OneShotCallbackBase> &&
           Invoker::template fits<std::decay_t<Functor>>) OneShotCallback(Functor&& functor)
      : OneShotCallbackBase(
            Invoker::template Bind<std::decay_t<Functor>&&>(std::forward<Functor>(functor))) {}
  OneShotCallback(OneShotCallback&&) noexcept = default;
  OneShotCallback& operator=(OneShotCallback&&) noexcept = default;
  OneShotCallback(const OneShotCallback&) = delete;
  OneShotCallback& operator=(const OneShotCallback&) = delete;
  ~OneShotCallback() = default;

  /// Makes this callback null, then calls the callable, which is released when the call returns.
  Result operator()(Args... args) {
    const auto once = std::move(state);
    return Invoker::Call(once, std::forward<Args>(args)...);
  }
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::OneShotCallback;
using VtrUtils::RepeatingCallback;
}  // namespace DataBinding

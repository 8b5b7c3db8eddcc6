// SPDX-License-Identifier: Apache-2.0
/// Typed callbacks over any callable: RepeatingCallback, copied freely and run many times, and
/// OneShotCallback, moved and run once.
///
/// Making one allocates once; copying allocates nothing, since copies share the callable. A call
/// keeps the callable alive until it returns, even when the callback itself is destroyed meanwhile.
/// Calling a null callback, or one whose target is gone (see BindWeak), does nothing and gives a
/// value-initialised result; where the result type has no such value std::bad_function_call is
/// thrown. Callbacks may be handed between threads; two threads that call one at once call its
/// callable at once.
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

/// How an argument travels to the invoke function: scalars by value, all else by reference.
template <class T>
using CallbackArgument = std::conditional_t<std::is_scalar_v<T> || std::is_reference_v<T>, T, T&&>;

/// A callable that knows whether its target is gone.
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

/// The result of a call that is skipped.
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
  BoundFunctor(InvokeFunction onInvoke, const std::type_info& type, CallLoop callLoop,
               Source&& source)
      : BindStateBase(onInvoke, &Destroy, Query()), functor(std::forward<Source>(source)) {
    SetSignature(type);
    SetLoop(callLoop);
  }

  static Functor& Of(const BindStateBase* state) noexcept {
    return static_cast<const BoundFunctor*>(state)->functor;
  }

 private:
  static void Destroy(const BindStateBase* state) {
    delete static_cast<const BoundFunctor*>(state);
  }
  static bool Ask(const BindStateBase* state, CancellationQueryMode mode) {
    return mode == CancellationQueryMode::IsCancelled ? Of(state).IsCancelled()
                                                      : Of(state).MaybeValid();
  }
  static constexpr CancellationQuery Query() noexcept {
    if constexpr (Cancellable<Functor>) {
      return &Ask;
    } else {
      return nullptr;
    }
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

  template <class Target, class Source>
  static comlike_ptr<BindStateBase> Bind(Source&& source) {
    using Functor = std::remove_cvref_t<Target>;
    if constexpr (isNullableFunctor<Functor>) {
      if (source == nullptr) return {};
    }
    const auto invoke = reinterpret_cast<BindStateBase::InvokeFunction>(&Run<Target>);
    BindStateBase::CallLoop loop = nullptr;
    if constexpr (std::same_as<Result(Args...), void()>) loop = &MakeCalls;
    return comlike_ptr<BindStateBase>(new BoundFunctor<Functor>(
        invoke, typeid(Result(Args...)), loop, std::forward<Source>(source)));
  }

  static Result Call(const comlike_ptr<BindStateBase>& state, CallbackArgument<Args>... args) {
    if (!state) return SkippedResult<Result>();
    const auto run = reinterpret_cast<Function>(state->Invoke());
    return run(state.Get(), std::forward<Args>(args)...);
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
  /// A null callback.
  RepeatingCallback(std::nullptr_t) noexcept {}
  /// Takes over a state of this signature; a null one makes a null callback.
  explicit RepeatingCallback(comlike_ptr<details::BindStateBase> adopted) noexcept
      : RepeatingCallbackBase(std::move(adopted)) {}
  /// From any callable with a matching signature. A null function pointer or an empty std::function
  /// makes a null callback.
  template <class Functor>
  requires(!std::derived_from<std::remove_cvref_t<Functor>, details::OneShotCallbackBase> &&
           Invoker::template fits<std::decay_t<Functor>&>) RepeatingCallback(Functor&& functor)
      : RepeatingCallbackBase(
            Invoker::template Bind<std::decay_t<Functor>&>(std::forward<Functor>(functor))) {}

  /// Calls the callable, which lives until it returns; a null callback gives a value-initialised
  /// result.
  Result operator()(Args... args) const {
    const auto keep = state;
    return Invoker::Call(keep, std::forward<Args>(args)...);
  }
  /// Shares the memento's state; one of another signature makes the callback null.
  void SetMemento(const RepeatingCallbackMemento& memento) noexcept {
    RepeatingCallbackBase::SetMemento(memento);
    if (state && !state->FitsSignature(typeid(Result(Args...)))) state = {};
  }
};

template <class Signature>
class OneShotCallback;

/// Runs once and is null from then on; moved, never copied. Takes callables that only move, and
/// releases them as soon as they have run.
template <class Result, class... Args>
class OneShotCallback<Result(Args...)> : public details::OneShotCallbackBase {
  using Invoker = details::Invoker<Result(Args...)>;

 public:
  OneShotCallback() noexcept = default;
  /// A null callback.
  OneShotCallback(std::nullptr_t) noexcept {}
  /// Takes over a state of this signature; a null one makes a null callback.
  explicit OneShotCallback(comlike_ptr<details::BindStateBase> adopted) noexcept
      : OneShotCallbackBase(std::move(adopted)) {}
  /// Shares the repeating callback's callable and calls it once.
  OneShotCallback(RepeatingCallback<Result(Args...)> repeating) noexcept
      : OneShotCallbackBase(std::move(repeating)) {}
  /// From any callable with a matching signature, which is moved in.
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

  /// Leaves the callback null before it runs; the callable is released when the call returns.
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

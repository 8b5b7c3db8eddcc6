// SPDX-License-Identifier: Apache-2.0
/// BindWeak makes a callable that runs a method of an object for as long as the object lives.
///
/// This is the safe way to give a callback its `this`. A Subscription alone is not enough: when it
/// is cancelled during an announcement, the announcement still makes the call that it owes.
///
/// The object gives weak pointers to itself (WeakPtr.h), or belongs to a std::shared_ptr. The
/// binding does not keep the object alive between calls. Each call first asks whether the object
/// lives. A shared object is then kept until the call returns; any other object must not be ended
/// on another thread during the call. Once the object is gone, calls are skipped and give a
/// value-initialised result, and a callback that was made from the binding reports itself
/// cancelled. Bound arguments are kept by value and stand before those of the call.
///
///   RepeatingCallback<void(int)> resize = BindWeak(view.AsWeakPtr(), &View::Resize, L"window");
///   RepeatingCallback<void(int)> log = BindWeak(sharedLog, &Log::Write);
#pragma once

#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace VtrUtils {

namespace details {

/// These ask both kinds of weak pointers alike: whether the object lives, and for the pointer by
/// which a call holds it.
///@{
template <class T>
[[nodiscard]] bool IsAlive(const WeakPtr<T>& target) noexcept {
  return target.IsValid();
}
template <class T>
[[nodiscard]] bool IsAlive(const std::weak_ptr<T>& target) noexcept {
  return !target.expired();
}
template <class T>
[[nodiscard]] T* Lock(const WeakPtr<T>& target) noexcept {
  return target.Get();
}
template <class T>
[[nodiscard]] std::shared_ptr<T> Lock(const std::weak_ptr<T>& target) noexcept {
  return target.lock();
}
///@}

template <class Target, class Method, class... Bound>
class WeakBinding {
  using Object = decltype(*Lock(std::declval<const Target&>()));

 public:
  template <class... Values>
  WeakBinding(Target object, Method called, Values&&... values)
      : target(std::move(object)), method(called), bound(std::forward<Values>(values)...) {}

  [[nodiscard]] bool IsCancelled() const noexcept { return !IsAlive(target); }
  [[nodiscard]] bool MaybeValid() const noexcept { return IsAlive(target); }

  template <class... Args>
  requires std::is_invocable_v<Method, Object, Bound&..., Args...>
  auto operator()(Args&&... args) -> std::invoke_result_t<Method, Object, Bound&..., Args...> {
    using Result = std::invoke_result_t<Method, Object, Bound&..., Args...>;
    const auto object = Lock(target);
    if (object == nullptr) return SkippedResult<Result>();
    return std::apply(
        [&](Bound&... first) -> Result {
          return std::invoke(method, *object, first..., std::forward<Args>(args)...);
        },
        bound);
  }

 private:
  Target target;
  Method method;
  std::tuple<Bound...> bound;
};

template <class Target, class Method, class... Bound>
[[nodiscard]] auto MakeWeakBinding(Target target, Method method, Bound&&... bound) {
  return WeakBinding<Target, Method, std::decay_t<Bound>...>(std::move(target), method,
                                                             std::forward<Bound>(bound)...);
}

}  // namespace details

/// Binds a method to an object and to arguments. Instead of a method, a function may be given that
/// takes the object as its first argument.
///@{
template <class T, class Method, class... Bound>
[[nodiscard]] auto BindWeak(WeakPtr<T> target, Method method, Bound&&... bound) {
  return details::MakeWeakBinding(std::move(target), method, std::forward<Bound>(bound)...);
}
template <class T, class Method, class... Bound>
[[nodiscard]] auto BindWeak(std::weak_ptr<T> target, Method method, Bound&&... bound) {
  return details::MakeWeakBinding(std::move(target), method, std::forward<Bound>(bound)...);
}
/// The binding keeps only a weak pointer to the object.
template <class T, class Method, class... Bound>
[[nodiscard]] auto BindWeak(const std::shared_ptr<T>& target, Method method, Bound&&... bound) {
  return BindWeak(std::weak_ptr<T>(target), method, std::forward<Bound>(bound)...);
}
///@}

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::BindWeak;
}  // namespace DataBinding

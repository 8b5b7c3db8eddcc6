/// BindWeak: a callable that runs a method of an object for as long as the object lives.
///
/// Once the object is gone the call is skipped, its result value-initialised, and a callback made
/// from it reports itself cancelled. Bound arguments stand before those of the call and are kept by
/// value. Whether the object lives is asked when the call starts, so it must not be ended on
/// another thread meanwhile.
///
///   RepeatingCallback<void(int)> resize = BindWeak(view.AsWeakPtr(), &View::Resize, L"window");
#pragma once

#include <functional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace VtrUtils {

namespace details {

template <class T, class Method, class... Bound>
class WeakBinding {
 public:
  template <class... Values>
  WeakBinding(WeakPtr<T> object, Method called, Values&&... values)
      : target(std::move(object)), method(called), bound(std::forward<Values>(values)...) {}

  [[nodiscard]] bool IsCancelled() const noexcept { return !target.IsValid(); }
  [[nodiscard]] bool MaybeValid() const noexcept { return target.IsValid(); }

  template <class... Args>
  requires std::is_invocable_v<Method, T&, Bound&..., Args...>
  auto operator()(Args&&... args) -> std::invoke_result_t<Method, T&, Bound&..., Args...> {
    using Result = std::invoke_result_t<Method, T&, Bound&..., Args...>;
    T* object = target.Get();
    if (object == nullptr) return SkippedResult<Result>();
    return std::apply(
        [&](Bound&... first) -> Result {
          return std::invoke(method, *object, first..., std::forward<Args>(args)...);
        },
        bound);
  }

 private:
  WeakPtr<T> target;
  Method method;
  std::tuple<Bound...> bound;
};

}  // namespace details

/// Binds a method, or a function that takes the object first, to a weak pointer and to arguments.
template <class T, class Method, class... Bound>
[[nodiscard]] auto BindWeak(WeakPtr<T> target, Method method, Bound&&... bound) {
  return details::WeakBinding<T, Method, std::decay_t<Bound>...>(std::move(target), method,
                                                                 std::forward<Bound>(bound)...);
}

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::BindWeak;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// OneWay joins a bind to a widget that only shows its value, and writes the widget at most once a
/// pass of the loop, however often the value changes.
///
/// A change wakes the loop, and `write` is called with the latest value at the end of the next Run
/// of the idle pass. It is called once when the join is made. `absent`, which may be left out, is
/// called in its place where there is no value.
///
/// A value whose `write` throws is written by the next pass. The exception leaves the Run.
///
/// The join owns the functions, and neither bind nor pass. All three may end in any order, also
/// inside the functions. Once the bind or the pass has ended, nothing is written any more. A join
/// is used on one thread, that of the provider tree and of the pass.
///
///   IdlePass idle([&] { loop.Wake(); });
///   const OneWayJoin load = OneWay(bind, idle, [&](const double& now) { label.Show(now); });
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/framework/IDataBind.h"

namespace DataBinding {

namespace details {

/// A join shares this state with its subscriptions. So the state outlasts a function that ends the
/// join.
template <class T>
struct OneWayState {
  OneWayState(Framework::IDataBind<T>& joined, RepeatingCallback<void()> waker,
              RepeatingCallback<void(const T&)> writer, RepeatingCallback<void()> withoutValue)
      : bind(joined),
        isBindThere(joined.GetLiveness()),
        wake(std::move(waker)),
        write(std::move(writer)),
        absent(std::move(withoutValue)) {}

  void Note() {
    isDue = true;  // first, since waking may throw
    wake();
  }
  void Write() {
    if (!std::exchange(isDue, false) || !isBindThere.IsValid()) return;
    FirstFailure failure;
    const bool isWritten = failure.Try([this] {
      const PropertyValue<T> now = bind.Get();
      now ? write(*now) : absent();
    });
    isDue = isDue || !isWritten;
    failure.Rethrow();
  }

  Framework::IDataBind<T>& bind;
  WeakReference isBindThere;
  RepeatingCallback<void()> wake;
  RepeatingCallback<void(const T&)> write;
  RepeatingCallback<void()> absent;
  bool isDue = true;
};

}  // namespace details

/// A OneWayJoin keeps bind and widget joined while it lives.
class [[nodiscard]] OneWayJoin {
 public:
  /// OneWay makes it of the subscriptions to bind and pass.
  OneWayJoin(Subscription toChanges, Subscription toPasses) noexcept
      : changes(std::move(toChanges)), passes(std::move(toPasses)) {}

 private:
  Subscription changes;
  Subscription passes;
};

/// Makes the join, and writes the widget for the first time.
template <class T>
OneWayJoin OneWay(Framework::IDataBind<T>& bind, const IdlePass& pass,
                  std::type_identity_t<RepeatingCallback<void(const T&)>> write,
                  RepeatingCallback<void()> absent = {}) {
  const std::shared_ptr<details::OneWayState<T>> state(
      new details::OneWayState<T>(bind, pass.Waker(), std::move(write), std::move(absent)));
  OneWayJoin join(bind.SubscribeToChanges([state] { state->Note(); }),
                  pass.OnDelivered([state] { state->Write(); }));
  state->Write();
  return join;
}

}  // namespace DataBinding

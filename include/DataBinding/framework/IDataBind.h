// SPDX-License-Identifier: Apache-2.0
/// An IDataBind<T> is a bind that carries a value of type T. One reads it, sets it and hears of its
/// changes through the bind.
///
/// Failures are values: where there is nothing to read or set, the answer says why. DataBind<T> is
/// the library's own implementation; user-interface code takes an IDataBind<T>& to work with any. A
/// bind is used on one thread, that of the provider tree.
///
///   void Show(const Framework::IDataBind<double>& load) {
///     const auto value = load.Get();
///     label.SetText(value ? Percent(*value) : value.text);
///   }
#pragma once

#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/framework/IBaseDataBind.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::Framework {

template <class T>
class IDataBind : public IBaseDataBind {
 public:
  /// Takes over the constructors of the base: from three names, or from another bind.
  using IBaseDataBind::IBaseDataBind;

  /// Returns the current value, or the reason why there is none.
  [[nodiscard]] virtual PropertyValue<T> Get() const = 0;
  /// Sets the value and says whether it changed, or why it could not be set. Subscribers run before
  /// this returns; they may end the bind.
  virtual SetResult Set(T value) = 0;
  /// Says what Set would answer, and sets nothing: it asks the property's validator. A bind that
  /// does not override this accepts every value.
  [[nodiscard]] virtual SetResult Check(const T& /*value*/) const { return {}; }
  /// Runs the callback whenever one of the other properties is announced that the property's
  /// validator reads and that it names, until the subscription ends: what Check says may be
  /// different from then on. It belongs to the property that the bind shows now, and a bind that
  /// comes to show another one has to be subscribed to again.
  virtual Subscription SubscribeToChecks(const RepeatingCallback<void()>& /*callback*/) const {
    return {};
  }
  /// Runs the callback with the value whenever it changes or comes, until the subscription ends. It
  /// is not run when the value goes or while there is none; SubscribeToChanges tells of that.
  /// Subscribing does not run it. Otherwise it is treated like a callback of SubscribeToChanges,
  /// and called in turn with those.
  ///
  /// The callback gets the value that is present when it runs, even if that has changed since the
  /// notification began. It may end the bind, the property, the source and itself. DataBind<T> does
  /// not copy a value that a property keeps: then the reference is good until the callback ends the
  /// property, and shows the new value if the callback sets one.
  virtual Subscription SubscribeToValue(const RepeatingCallback<void(const T&)>& callback) {
    if (!callback) return {};
    return this->SubscribeToChanges([this, alive = GetLiveness(), callback] {
      if (!alive.IsValid()) return;
      if (const auto present = Get()) callback(*present);
    });
  }

  /// Returns a reference that tells whether the bind is still there, for code that keeps a pointer
  /// to it.
  [[nodiscard]] details::WeakReference GetLiveness() const { return liveness.GetRef(); }

 protected:
  /// Makes code that keeps a pointer take the bind for gone from now on. This serves binds that end
  /// in steps.
  void EndLiveness() noexcept { liveness.Invalidate(); }

 private:
  details::WeakReferenceOwner liveness;
};

}  // namespace DataBinding::Framework

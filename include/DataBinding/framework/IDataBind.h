// SPDX-License-Identifier: Apache-2.0
/// A bind that carries a value of type T: read it, set it, hear of its changes.
///
/// Failures are values: where there is nothing to read or set, the answer says why. DataBind<T> is
/// the library's own; user-interface code takes an IDataBind<T>& to work with any. One thread, that
/// of the provider tree.
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
  /// Those of the base: of three names, or of another bind's.
  using IBaseDataBind::IBaseDataBind;

  /// The current value, or why there is none.
  [[nodiscard]] virtual PropertyValue<T> Get() const = 0;
  /// Sets the value and says whether it changed, or why it could not be set. Subscribers run before
  /// this returns; they may end the bind.
  virtual SetResult Set(T value) = 0;

  /// Tells whether the bind is still there, for those that keep a pointer to it.
  [[nodiscard]] details::WeakReference GetLiveness() const { return liveness.GetRef(); }

 protected:
  /// For binds that end in steps: those that keep a pointer take the bind for gone from now on.
  void EndLiveness() noexcept { liveness.Invalidate(); }

 private:
  details::WeakReferenceOwner liveness;
};

}  // namespace DataBinding::Framework

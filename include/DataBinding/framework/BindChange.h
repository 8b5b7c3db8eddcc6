// SPDX-License-Identifier: Apache-2.0
/// A BindChange tells the subscriber of a bind what has happened to the value that the bind shows,
/// and a ChangeCallback is what a bind runs then.
///
/// A subscriber is a function without arguments, or one that takes the BindChange. A form that
/// someone is filling in keeps the unfinished edit at Value, and must not file it after Replaced,
/// because it would go to another thing. An EditSession sees to that (EditSession.h).
///
///   Subscription watch = name.SubscribeToChanges([&](Framework::BindChange change) {
///     if (change != Framework::BindChange::Value) form.DropEdits();
///   });
#pragma once

#include <concepts>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/Callback.h"

namespace DataBinding::Framework {

/// Says what has happened to the value that a bind shows.
enum class BindChange {
  Value,    ///< the same property has changed its value, or announced that it might have
  Came,     ///< there is a value now, and there was none
  Went,     ///< there is no value now, or still none but perhaps for another reason
  Replaced  ///< there is a value as before, of a property in another source or of another name
};

/// A ChangeCallback is copied freely; copies share the function. What fits both signatures is
/// called without an argument.
class ChangeCallback {
 public:
  /// Makes a callback that does nothing.
  ChangeCallback() noexcept = default;
  /// Takes a function without arguments, or one that takes a BindChange, as a callback takes it.
  template <class Functor>
  requires(!std::same_as<std::remove_cvref_t<Functor>, ChangeCallback> &&
           (std::convertible_to<Functor, RepeatingCallback<void()>> ||
            std::convertible_to<Functor, RepeatingCallback<void(BindChange)>>))
      ChangeCallback(Functor&& functor) {
    if constexpr (std::convertible_to<Functor, RepeatingCallback<void()>>) {
      plain = std::forward<Functor>(functor);
    } else {
      told = std::forward<Functor>(functor);
    }
  }

  /// Calls the function and keeps it alive until it returns.
  void operator()(BindChange change) const { told ? told(change) : plain(); }
  /// Return the function, or a null callback where it has the other signature.
  ///@{
  [[nodiscard]] const RepeatingCallback<void()>& WithoutChange() const noexcept { return plain; }
  [[nodiscard]] const RepeatingCallback<void(BindChange)>& WithChange() const noexcept {
    return told;
  }
  ///@}

 private:
  RepeatingCallback<void()> plain;
  RepeatingCallback<void(BindChange)> told;
};

}  // namespace DataBinding::Framework

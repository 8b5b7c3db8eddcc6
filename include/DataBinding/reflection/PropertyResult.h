// SPDX-License-Identifier: Apache-2.0
/// Reading or setting a property, and calling a delegate, gives a result of one of these types. It
/// holds the outcome, and a text for people that says why it failed.
///
/// Results are plain values: they may be copied, kept and handed to other threads. The text says
/// what was wanted and what was found, and is empty where nothing failed.
///
///   if (const SetResult result = size.Set(200); !result.IsAccepted()) std::cerr << result;
#pragma once

#include <iosfwd>
#include <optional>
#include <utility>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

/// Says why a property could not be read or set, or why a delegate could not be called.
enum class PropertyError {
  None,
  NoSource,    ///< the given source was null
  Absent,      ///< the source has no such member, or the source is gone
  WrongType,   ///< the member has another type, or is of another kind
  NoAccessor,  ///< the member was declared with a type only, so there is nothing to read or call
  ReadOnly,    ///< only the source itself may set the property
  Refused,     ///< the property's validator refused the value
  OutOfRange,  ///< the list has no such place, or fewer rows from there on
  Conflict     ///< the value has changed, or another record has come, since the edit began
};

/// A SetResult is the outcome of setting a property.
struct SetResult {
  /// This is true when the property has a new value and its listeners were told.
  bool changed = false;
  /// Says why the value was not accepted. A value that equals the present one is accepted, and
  /// changes nothing.
  PropertyError error = PropertyError::None;
  /// Names the source, the property and the types, and gives the validator's reason if the value
  /// was refused. It is empty when there was no error.
  VtrString text;
  /// Holds only the reason of the validator or converter that refused the value, to be shown beside
  /// the widget.
  VtrString reason = {};
  /// This is true when the change waits until a list has told another change to everybody. The
  /// value was accepted, and a later change of the list shows it.
  bool waits = false;

  /// Returns true when the value was accepted, whether or not it made a difference.
  [[nodiscard]] bool IsAccepted() const noexcept { return error == PropertyError::None; }
  /// Writes the text as UTF-8, which is nothing where the value was accepted.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const SetResult& result) {
    return out << result.text;
  }
};

/// A PropertyValue is the value of a property or the result of a delegate, or says why there is
/// none.
template <class T>
struct PropertyValue {
  /// Holds a copy of the value, if there is one.
  std::optional<T> value;
  /// Says why there is no value.
  PropertyError error = PropertyError::None;
  /// This is the same as in SetResult.
  VtrString text;

  /// Returns true when there is a value.
  explicit operator bool() const noexcept { return value.has_value(); }
  /// These may be used only when there is a value.
  ///@{
  const T& operator*() const { return *value; }
  const T* operator->() const { return &*value; }
  ///@}
  /// Writes the value or, where there is none, the text as UTF-8.
  template <class Traits>
  requires requires(std::basic_ostream<char, Traits>& out, const T& present) { out << present; }
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const PropertyValue& result) {
    if (result) {
      out << *result;
    } else {
      out << result.text;
    }
    return out;
  }
};

/// Tells whether a delegate without a result was called.
template <>
struct PropertyValue<void> {
  /// Says why the delegate was not called.
  PropertyError error = PropertyError::None;
  /// This is the same as in SetResult.
  VtrString text;

  /// Returns true when the delegate was called.
  explicit operator bool() const noexcept { return error == PropertyError::None; }
};

namespace details {

/// Returns why a validator refuses a value. The result is empty if the validator accepts the value,
/// or if there is none. A validator that is bound to an object refuses every value once the object
/// is gone.
template <class T>
[[nodiscard]] VtrString ReasonAgainst(const T& value,
                                      const RepeatingCallback<VtrString(const T&)>& validate) {
  if (!validate) return {};
  const VtrString reason = validate.IsCancelled() ? VtrString() : validate(value);
  // The object may have ended on another thread after the first question and before the call.
  return reason.IsEmpty() && validate.IsCancelled() ? VtrString(L"its validator is gone") : reason;
}

}  // namespace details

}  // namespace DataBinding

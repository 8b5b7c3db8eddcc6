// SPDX-License-Identifier: Apache-2.0
/// What comes of reading or setting a property, or of calling a delegate: the outcome, and a text
/// for people where it failed.
///
/// Plain values: they may be copied, kept and handed to other threads. The text says what was
/// wanted and what was found, and is empty where nothing failed.
///
///   if (const SetResult result = size.Set(200); !result.IsAccepted()) std::cerr << result;
#pragma once

#include <iosfwd>
#include <optional>
#include <utility>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

/// Why a property could not be read or set, or a delegate not be called.
enum class PropertyError {
  None,
  NoSource,    ///< the source given was null
  Absent,      ///< the source has no such member, or it is gone
  WrongType,   ///< the member has another type, or is of another kind
  NoAccessor,  ///< the member was declared with a type only, so there is nothing to read or call
  ReadOnly,    ///< only the source itself may set the property
  Refused      ///< the property's validator refused the value
};

/// The outcome of setting a property.
struct SetResult {
  /// True when the property has a new value and its listeners were told.
  bool changed = false;
  /// Why it was not accepted. An equal value is accepted, and changes nothing.
  PropertyError error = PropertyError::None;
  /// Names source, property and types, and for a refused value the validator's reason. Empty
  /// without an error.
  VtrString text;
  /// For a refused value the validator's or converter's reason alone, to stand beside the widget.
  VtrString reason = {};

  /// True where nothing stood against the value, whether or not it made a difference.
  [[nodiscard]] bool IsAccepted() const noexcept { return error == PropertyError::None; }
  /// Writes the text as UTF-8: nothing where the value was accepted.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const SetResult& result) {
    return out << result.text;
  }
};

/// The value of a property or the result of a delegate, or why there is none.
template <class T>
struct PropertyValue {
  /// A copy; empty where there is none.
  std::optional<T> value;
  /// Why there is none.
  PropertyError error = PropertyError::None;
  /// The same as in SetResult.
  VtrString text;

  /// True when there is a value.
  explicit operator bool() const noexcept { return value.has_value(); }
  /// For results that have a value.
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

/// Whether a delegate that gives no result was called.
template <>
struct PropertyValue<void> {
  /// Why it was not called.
  PropertyError error = PropertyError::None;
  /// The same as in SetResult.
  VtrString text;

  /// True when it was called.
  explicit operator bool() const noexcept { return error == PropertyError::None; }
};

namespace details {

/// Why a validator refuses a value; empty where it accepts the value, or there is no validator. One
/// that is bound to an object refuses everything once the object is gone.
template <class T>
[[nodiscard]] VtrString ReasonAgainst(const T& value,
                                      const RepeatingCallback<VtrString(const T&)>& validate) {
  if (!validate) return {};
  const VtrString reason = validate.IsCancelled() ? VtrString() : validate(value);
  // It may have gone on another thread before it was called.
  return reason.IsEmpty() && validate.IsCancelled() ? VtrString(L"its validator is gone") : reason;
}

}  // namespace details

}  // namespace DataBinding

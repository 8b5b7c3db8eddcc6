// SPDX-License-Identifier: Apache-2.0
/// A BindStatus tells whether a bind shows the value that it names, and if not, why.
///
/// It is a plain value, taken when it is asked for, and does not follow the bind. Its text is
/// written for people: it names the data source, the property and the types, and is empty where all
/// is well.
///
///   if (const BindStatus status = bind.Status(); !status.IsConnected()) std::cerr << status;
#pragma once

#include <iosfwd>

#include "DataBinding/foundation/String.h"

namespace DataBinding::Framework {

struct BindStatus {
  /// Tells what a bind has found, or what it lacks.
  enum class State {
    Connected,    ///< the bind shows the value and may set it
    ReadOnly,     ///< it shows the value, which only the data source itself may set
    Unbound,      ///< it names no data source or no property, perhaps on purpose
    NoProvider,   ///< it is connected to no scope, or its scope is gone
    NoContext,    ///< no scope here or further out has the data context's name as a category
    NoSource,     ///< there is no such data source, or not yet
    NotBuilt,     ///< the data source could be built, but nobody has asked for it
    CaseDiffers,  ///< a data source or a property has that name in other case
    Shadowed,     ///< the name finds an earlier data source, or one of a nearer scope
    NoProperty,   ///< the data source has no such property
    WrongType,    ///< the property or event has another type, or cannot be reached
    Restless      ///< told by Diagnose of a list: its callbacks have changed it again and again
  };

  /// Tells the state. It is Unbound unless the status was taken from a bind.
  State state = State::Unbound;
  /// Tells why the value is not shown, cannot be set, or cannot be looked up.
  VtrString text;

  /// Returns true when the value is shown.
  [[nodiscard]] bool IsConnected() const noexcept {
    return state == State::Connected || state == State::ReadOnly;
  }
  /// Writes the text as UTF-8, which is nothing where all is well.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const BindStatus& status) {
    return out << status.text;
  }
};

}  // namespace DataBinding::Framework

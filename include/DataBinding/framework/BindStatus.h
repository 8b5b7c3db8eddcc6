// SPDX-License-Identifier: Apache-2.0
/// Whether a bind shows what it names, and if not, why.
///
/// A plain value, taken when it is asked for: it does not follow the bind. The text is for people;
/// it names the data source, the property and the types, and is empty where all is well.
///
///   if (const BindStatus status = bind.Status(); !status.IsConnected()) std::cerr << status;
#pragma once

#include <iosfwd>

#include "DataBinding/foundation/String.h"

namespace DataBinding::Framework {

struct BindStatus {
  enum class State {
    Connected,    ///< shows the value and may set it
    ReadOnly,     ///< shows the value; only the data source itself may set it
    Unbound,      ///< names no data source or no property, perhaps on purpose
    NoProvider,   ///< is connected to no scope, or its scope is gone
    NoContext,    ///< no scope here or further out has the data context's name as a category
    NoSource,     ///< there is no such data source, or not yet
    NotBuilt,     ///< the data source could be built, but nobody has asked for it
    CaseDiffers,  ///< a data source or a property has that name in other case
    Shadowed,     ///< an earlier data source or one of a nearer scope has the name
    NoProperty,   ///< the data source has no such property
    WrongType     ///< the property or event has another type, or none that can be reached
  };

  /// Unbound unless it was taken from a bind.
  State state = State::Unbound;
  /// Why the value is not shown, cannot be set, or cannot be looked up.
  VtrString text;

  /// True when the value is shown.
  [[nodiscard]] bool IsConnected() const noexcept {
    return state == State::Connected || state == State::ReadOnly;
  }
  /// Writes the text as UTF-8: nothing where all is well.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const BindStatus& status) {
    return out << status.text;
  }
};

}  // namespace DataBinding::Framework

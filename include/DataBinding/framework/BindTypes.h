// SPDX-License-Identifier: Apache-2.0
/// The kinds of binds, and the two names that leave a part of a bind open on purpose.
///
/// A marker stands where a name is expected and says "nothing is meant to be bound here"; an empty
/// name says the same by omission, and is what binds start with. Markers are compared exactly, case
/// included. The constants live as long as the library and may be used during static
/// initialisation.
#pragma once

#include "DataBinding/Export.h"

namespace DataBinding::Framework {

/// What a bind is, for code that holds binds of all kinds.
enum class BindTypeEnum {
  None = 0,
  Data = 1,  ///< carries a value
  Event = 2  ///< raises an event; its number is laid down
};

/// In place of a data context's or a data source's name.
DATABINDING_API extern const wchar_t* const nullDataMarker;
/// In place of a path.
DATABINDING_API extern const wchar_t* const nullPathMarker;

}  // namespace DataBinding::Framework

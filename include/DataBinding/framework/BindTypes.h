// SPDX-License-Identifier: Apache-2.0
/// This header names the kinds of binds, and two markers that leave a part of a bind open on
/// purpose.
///
/// A marker stands where a name is expected and says "nothing is meant to be bound here". An empty
/// name, which binds start with, says the same by omission. Markers are compared exactly, case
/// included. The constants live as long as the library and may be used during static
/// initialisation.
#pragma once

#include "DataBinding/Export.h"

namespace DataBinding::Framework {

/// Tells what kind a bind is, for code that holds binds of all kinds.
enum class BindTypeEnum {
  None = 0,
  Data = 1,  ///< the bind carries a value
  Event = 2  ///< the bind raises an event; this number is fixed
};

/// Stands in place of a data context's or a data source's name.
DATABINDING_API extern const wchar_t* const nullDataMarker;
/// Stands in place of a path.
DATABINDING_API extern const wchar_t* const nullPathMarker;

}  // namespace DataBinding::Framework

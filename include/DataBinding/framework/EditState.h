// SPDX-License-Identifier: Apache-2.0
/// An EditState says how the edit of a value stands, so that a widget can show it: a mark for what
/// is typed, a reason beside what was refused, a choice where it is in conflict, and grey where
/// there is nothing to edit.
///
///   Clean ──Typed()──> Typed ──Commit()──> Clean, or Refused
///                      Typed ──the source changes──> Conflict ──Overwrite() or Revert()──> Clean
#pragma once

namespace DataBinding {

/// Where several are true, the first of these counts: Absent, Conflict, Refused, Typed, ReadOnly.
enum class EditState {
  Clean,     ///< the widget shows the value
  Typed,     ///< the user has typed something that is not filed yet
  Refused,   ///< what was typed was refused, and is still in the widget
  Conflict,  ///< the source has changed, or another record has come, since the user typed
  Absent,    ///< there is no value to edit; what was typed before is still in the widget
  ReadOnly   ///< there is a value that only its source may set
};

}  // namespace DataBinding

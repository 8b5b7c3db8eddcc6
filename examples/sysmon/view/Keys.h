// SPDX-License-Identifier: Apache-2.0
/// The keys that a user may press.
#pragma once

namespace Sysmon {

enum class Key {
  None,
  Up,
  Down,
  PageUp,
  PageDown,
  First,
  Last,
  Open,
  Close,
  Erase,
  Next,
  SortByCpu,
  SortByMemory,
  SortById,
  SortByName,
  Reverse,
  EditLimit,
  SwitchLog,
  Pause,
  Redraw,
  Quit,
  Other
};

struct KeyPress {
  Key key = Key::None;
  /// The character that the key writes in a line that is edited, or 0.
  wchar_t character = 0;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// What a user may press.
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
  /// What the key writes where there is something to write in, or 0.
  wchar_t character = 0;
};

}  // namespace Sysmon

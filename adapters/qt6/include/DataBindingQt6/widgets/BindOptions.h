// SPDX-License-Identifier: Apache-2.0
/// BindOptions say when an edit of a bound widget is filed, and where it is said why not.
///
/// What the user types is filed when the edit is finished: when Enter is pressed or the focus moves
/// on. What the user chooses is finished at once: a click, a step of a spin box, a turn of the
/// wheel, a new place of a slider. The focus does not move on when another window is activated or a
/// menu opens.
///
///   Qt6::Bind(search, L"People", L"Filter", {.commitOn = Qt6::CommitOn::Delay});
///   Qt6::Bind(port, L"Server", L"Port", {.reasonIn = hint});
#pragma once

#include <QLabel>
#include <chrono>

#include "DataBinding/foundation/String.h"

namespace DataBinding::Qt6 {

/// Says when an edit is filed. With each of them, an edit is filed when it is finished.
enum class CommitOn {
  Finish,   ///< what is typed when it is finished, what is chosen at once
  Typing,   ///< at each character, too; the text is left as it is until the edit is finished
  Release,  ///< what is chosen with the mouse when the button is let go of, and not while it is
            ///< held
  Delay     ///< when the user has not changed anything for a time
};

struct BindOptions {
  /// Says when an edit is filed.
  CommitOn commitOn = CommitOn::Finish;
  /// The time that CommitOn::Delay waits.
  std::chrono::milliseconds delay{300};
  /// Shows why an edit is refused or in conflict, and nothing otherwise. It is not owned, may end
  /// at any time, and may serve several widgets.
  QLabel* reasonIn = nullptr;
  /// Names the data context in which the source is looked for. An empty name, or the marker for
  /// none, begins at the scope of the widget.
  VtrString context = {};
};

}  // namespace DataBinding::Qt6

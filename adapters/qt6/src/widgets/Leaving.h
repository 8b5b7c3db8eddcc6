// SPDX-License-Identifier: Apache-2.0
/// Says when the user is done with a widget because the focus has left it.
///
/// The focus also goes when another window is activated or a menu opens. It comes back from there,
/// so what is typed is not filed then.
#pragma once

#include <QFocusEvent>

namespace DataBinding::Qt6 {

inline bool LeavesWidget(const QEvent& event) {
  if (event.type() != QEvent::FocusOut) return false;
  const auto reason = static_cast<const QFocusEvent&>(event).reason();
  return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
         reason != Qt::MenuBarFocusReason;
}

}  // namespace DataBinding::Qt6

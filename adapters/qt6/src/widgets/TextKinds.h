// SPDX-License-Identifier: Apache-2.0
/// These functions are shared by all kinds of widgets that hold a line edit.
#pragma once

#include <QLineEdit>
#include <QString>

namespace DataBinding::Qt6 {

/// Sets another text, and leaves the caret and the selection where they are.
void SetTextKeepingCaret(QLineEdit& edit, const QString& text);

}  // namespace DataBinding::Qt6

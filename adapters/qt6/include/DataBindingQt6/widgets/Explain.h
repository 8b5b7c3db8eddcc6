// SPDX-License-Identifier: Apache-2.0
/// Explain says at the widgets and actions of a window to which something is bound in vain why that
/// is so: a name that no source has, a property of another type, a scope that was never set.
///
/// It serves the developer of the window, and gives the reasons that Diagnose gives (Diagnose.h):
/// as the tool tip of each such widget, and all together in the middle of the window. The widget or
/// action is named there by its object name, and otherwise by its class. The reasons are those of
/// the moment; the tool tips stay until Explain is called again, and then those are given back that
/// are not explained any more. It changes nothing else, and costs nothing until it is called.
///
///   Qt6::ExplainOn(&window, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F1));
#pragma once

#include <QKeySequence>
#include <QStringList>
#include <QWidget>

#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

/// Explains now and returns a line for each bind that finds nothing: those of Bind, BindChoices and
/// BindState.h, and of commands. A null window has none.
DATABINDING_QT6_API QStringList Explain(QWidget* window);
/// Explains each time that the user presses the keys in the window. A null window is ignored.
DATABINDING_QT6_API void ExplainOn(QWidget* window, const QKeySequence& keys);

}  // namespace DataBinding::Qt6

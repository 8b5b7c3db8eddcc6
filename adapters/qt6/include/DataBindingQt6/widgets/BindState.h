// SPDX-License-Identifier: Apache-2.0
/// These functions let a property say whether a widget is enabled or visible, and what its title
/// and its tool tip are.
///
/// The property is found by name in the scope of the widget (Scope.h), as Bind finds it, or in the
/// data context that is named. It may be of any type. A truth value, a number other than 0, and a
/// text other than "", "0" and "false" enable and show; where there is no value, the widget is
/// disabled or hidden, and its title or tool tip is empty. So do not set the same of a widget by
/// the program as well. A widget in which a property is edited, and a button or an action that
/// raises an event, may have a BindEnabled, too. It is enabled where both allow that.
///
/// The join belongs to the widget and ends with it. A second join of the same kind takes the place
/// of the first. A null widget is ignored. A widget that is shown by BindVisible should have
/// its parent before, since a widget without one is shown as a window.
///
/// An exception of a getter leaves the call that joins, and no join is made. Later the failure
/// handler (ListenerGuard.h) is told of such an exception, and the widget stays as it is. All of
/// this belongs to the thread of the widgets.
///
///   Qt6::BindEnabled(port, L"Server", L"IsManual");
///   Qt6::BindTitle(&window, L"Document", L"Title");
#pragma once

#include "DataBinding/foundation/String.h"
#include "DataBindingQt6/Export.h"

class QAction;
class QWidget;

namespace DataBinding::Qt6 {

/// Enables by a property.
///@{
DATABINDING_QT6_API void BindEnabled(QWidget* widget, const VtrString& source,
                                     const VtrString& property, const VtrString& context = {});
DATABINDING_QT6_API void BindEnabled(QAction* action, const VtrString& source,
                                     const VtrString& property, const VtrString& context = {});
///@}
/// Shows and hides by a property.
///@{
DATABINDING_QT6_API void BindVisible(QWidget* widget, const VtrString& source,
                                     const VtrString& property, const VtrString& context = {});
DATABINDING_QT6_API void BindVisible(QAction* action, const VtrString& source,
                                     const VtrString& property, const VtrString& context = {});
///@}
/// Shows the text of a property as the title of a window.
DATABINDING_QT6_API void BindTitle(QWidget* window, const VtrString& source,
                                   const VtrString& property, const VtrString& context = {});
/// Shows the text of a property as tool tip. Characters that Qt takes for rich text are shown as
/// they are.
DATABINDING_QT6_API void BindToolTip(QWidget* widget, const VtrString& source,
                                     const VtrString& property, const VtrString& context = {});

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// Bind joins a button or an action to an application event, in the scope in which it stands.
///
/// The button is enabled while the event can be raised: where the scope has a data context to raise
/// it for, and nobody has disabled the event's name (EventBind.h). When it is clicked, what was
/// typed in its window is filed first (EditsOf.h), also where the button takes no focus. Where an
/// edit is refused, the event is not raised, and the widget of that edit gets the focus and shows
/// why. The window is that of the button, or the one in which the action has its parent, or else
/// the active one; a menu and a floating dock belong to the window of their parent.
///
/// The bind belongs to the button. Give it a data context of its own by SetDataContextBind. Binding
/// the button once more takes the place of the former. Leave the enabling to the bind, and to a
/// BindEnabled. Exceptions go to the failure handler (ListenerGuard.h), and so does the reason why
/// a click cannot raise the event: most often its signature is another one. A null button gets a
/// bind that nothing raises, which is shared by all of them.
///
///   Qt6::Bind(saveAction, L"SaveDocument");
///   Qt6::Bind(cancelButton, L"DropChanges", {.commitsEdits = false});
#pragma once

#include <memory>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/EventBind.h"
#include "DataBindingQt6/Export.h"

class QAbstractButton;
class QAction;

namespace DataBinding::Qt6 {

struct CommandOptions {
  /// Files what was typed in the window before the event is raised.
  bool commitsEdits = true;
  /// Names the data context for which the event is raised. An empty name means that of the nearest
  /// scope.
  VtrString context = {};
};

/// Joins an event bind of the application's own, which the button connects to its scope.
///@{
DATABINDING_QT6_API Framework::EventBind& Bind(QAction* action,
                                               std::unique_ptr<Framework::EventBind> bind,
                                               const CommandOptions& options = {});
DATABINDING_QT6_API Framework::EventBind& Bind(QAbstractButton* button,
                                               std::unique_ptr<Framework::EventBind> bind,
                                               const CommandOptions& options = {});
///@}

/// Joins the event of that name. Its origin is the module that calls this.
///@{
DATABINDING_MODULE_LOCAL inline Framework::EventBind& Bind(QAction* action, const VtrString& event,
                                                           const CommandOptions& options = {}) {
  return Bind(action, std::make_unique<Framework::EventBind>(options.context, VtrString(), event),
              options);
}
DATABINDING_MODULE_LOCAL inline Framework::EventBind& Bind(QAbstractButton* button,
                                                           const VtrString& event,
                                                           const CommandOptions& options = {}) {
  return Bind(button, std::make_unique<Framework::EventBind>(options.context, VtrString(), event),
              options);
}
///@}

}  // namespace DataBinding::Qt6

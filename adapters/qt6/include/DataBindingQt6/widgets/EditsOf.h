// SPDX-License-Identifier: Apache-2.0
/// EditsOf gives the edits of all widgets that are bound in a window, so that none is lost when the
/// window closes, when a button is pressed that takes no focus, or before another record is shown.
///
/// The widgets are looked for when something is asked, so it does not matter when they were bound
/// or put into the window. Docks that float belong to the window, dialogues are windows of their
/// own. Any widget will do in place of a window; then the edits are those within it.
///
/// The editor of a table's cell is not among them, but CommitAll gives the table the focus, which
/// finishes that editor. A cell that the model refuses then is no refusal here.
///
/// All of this is called from slots and events of Qt, so nothing is thrown: what an edit throws
/// goes to the failure handler (ListenerGuard.h), and the edit counts as refused.
///
///   void Editor::closeEvent(QCloseEvent* event) {
///     event->setAccepted(Qt6::EditsOf(this).CommitAll().IsAccepted());
///   }
///   QObject::connect(&Qt6::EditsOf(this), &Qt6::WindowEdits::hasTypedChanged, apply,
///                    &QPushButton::setEnabled);
#pragma once

#include <QObject>
#include <QWidget>
#include <memory>
#include <vector>

#include "DataBinding/reflection/PropertyResult.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding {
class EditGroup;
}  // namespace DataBinding

namespace DataBinding::Qt6 {

class Binding;

/// The edits of one window, in the order in which they were bound. They belong to the window.
class DATABINDING_QT6_API WindowEdits final : public QObject {
  Q_OBJECT

 public:
  /// EditsOf makes it. A null window has no edits.
  explicit WindowEdits(QWidget* window);

  /// Commits all edits and answers the first refusal, as EditGroup does (EditGroup.h). The widget
  /// of the edit that was refused first gets the focus, and the pages of tabs and stacks on which
  /// it stands are shown.
  SetResult CommitAll();
  /// Says what CommitAll would answer, and sets nothing.
  [[nodiscard]] SetResult CheckAll();
  /// Reverts all edits.
  void RevertAll();
  /// Returns true while a widget holds something that was typed and is neither filed nor reverted.
  [[nodiscard]] bool HasTyped() const;
  /// Returns the bindings that stand in the window now.
  [[nodiscard]] std::vector<Binding*> Bindings() const;

 Q_SIGNALS:
  /// HasTyped has become another one.
  void hasTypedChanged(bool hasTyped);

 private:
  friend class Binding;
  [[nodiscard]] std::unique_ptr<EditGroup> Group() const;
  static void TellOf(const Binding& changed);
  void Tell();

  bool toldTyped = false;
};

/// Returns the edits of a window or of any other widget. Null gets those of no window.
[[nodiscard]] DATABINDING_QT6_API WindowEdits& EditsOf(QWidget* window);

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// A Binding joins one widget to one property. Bind makes it, and it belongs to the widget.
///
/// It is an EditSession (EditSession.h) that shows its state at the widget. So what the user types
/// is never overwritten, and what the widget shows only roughly is never written back.
/// - Refused and Conflict: what was typed stays. Reason() is shown as tool tip, as accessible
///   description and in BindOptions::reasonIn. The dynamic property "refused" or "conflict" is
///   true, for style sheets: `QLineEdit[refused="true"] { border: 1px solid red }`. All of this
///   goes when a later edit is accepted, or by Revert, for which Escape stands.
/// - Absent: the widget is cleared and, when control has returned to the loop, disabled, so that
///   the focus stays where another source comes at once. What was typed stays, and the widget
///   enabled; that it cannot be filed is shown like a refusal.
/// - ReadOnly: the widget is read-only or, where its kind is never, disabled.
///
/// The widget is enabled, and may be edited, again when that state ends, unless it was disabled or
/// read-only before. In between, leave both to the binding.
///
/// A widget that only shows has the states Clean and Absent, and is never disabled. It is written
/// once a pass of the QtIdlePass that is there when it is bound, and stands still once that pass
/// has ended; where there is none, it is written at once.
///
/// Everything that a binding calls may end the widget, and then nothing touches it any more. As
/// with any signal of Qt, a widget whose own signal is under way is better ended by deleteLater.
/// When a window ends, nothing of it is filed. All of it belongs to the thread of the widgets.
///
/// Getters, validators and traits may throw while an edit or a change is under way. The failure
/// handler (ListenerGuard.h) is told of the exception, and within a pass QtIdlePass::failed is.
/// Where the program calls Bind, Check, Commit, Overwrite or Revert, the exception leaves that
/// call.
#pragma once

#include <QObject>
#include <QWidget>
#include <memory>

#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/BindStatus.h"
#include "DataBinding/framework/EditState.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBindingQt6/Export.h"
#include "DataBindingQt6/widgets/BindOptions.h"
#include "DataBindingQt6/widgets/details/WidgetOps.h"

namespace DataBinding {
class EditSession;
}  // namespace DataBinding

namespace DataBinding::Qt6 {

class Binding;

namespace details {

/// Makes the binding of a widget, in place of the one that it has. A null widget gets one that
/// shows and files nothing.
DATABINDING_QT6_API Binding& MakeBinding(QObject* widget, const WidgetOps& ops,
                                         const VtrString& source, const VtrString& property,
                                         const BindOptions& options);

}  // namespace details

class DATABINDING_QT6_API Binding final : public QObject {
  Q_OBJECT

 public:
  /// Files nothing and does not touch the widget.
  ~Binding() override;

  /// Returns the binding of a widget or of a group of buttons, or null.
  [[nodiscard]] static Binding* Of(const QObject* widget);

  /// Says how the edit stands.
  [[nodiscard]] EditState State() const;
  /// Says to the user why the edit is refused, or what it is in conflict with, and otherwise
  /// nothing.
  [[nodiscard]] VtrString Reason() const;
  /// Returns true while the widget holds something that was typed and is neither filed nor
  /// reverted.
  [[nodiscard]] bool HasTyped() const;
  /// Says whether the property was found and fits the widget, and if not, why.
  [[nodiscard]] Framework::BindStatus Status() const;
  /// Returns the widget, or the first one of a group of buttons; null where there is none any more.
  [[nodiscard]] QWidget* Widget() const;

  /// These do what the operations of EditSession do; nothing at a widget that only shows.
  ///@{
  SetResult Check();
  SetResult Commit();
  SetResult Overwrite();
  void Revert();
  ///@}

  /// Watches the keys and the focus of the widget.
  bool eventFilter(QObject* watched, QEvent* event) override;

 public Q_SLOTS:
  /// These tell of an edit; see WidgetTraits.h.
  ///@{
  void typed();
  void chosen();
  void finished();
  ///@}
  /// Writes the widget again when control has returned to the loop, unless something is typed in
  /// it. Call it when the application has changed what the widget can show, such as its range. It
  /// is called for a combo box when its entries have changed.
  void showAgain();

 Q_SIGNALS:
  /// The state or its reason has changed.
  void stateChanged(DataBinding::EditState state);

 private:
  friend class WindowEdits;
  friend Binding& details::MakeBinding(QObject* widget, const details::WidgetOps& ops,
                                       const VtrString& source, const VtrString& property,
                                       const BindOptions& options);
  struct Inner;

  Binding(QObject& widget, const details::WidgetOps& ops, const VtrString& source,
          const VtrString& property, const BindOptions& options);
  static Binding& None();
  [[nodiscard]] const EditSession* Session() const;
  void Follow();
  void Leave();
  void ShowState();
  void DisableAbsent();
  void ShowAgainNow();
  void CommitLater();
  void CommitTyped();
  bool PressesKey(int key);

  std::unique_ptr<Inner> inner;
};

}  // namespace DataBinding::Qt6

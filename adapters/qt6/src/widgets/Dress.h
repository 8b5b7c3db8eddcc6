// SPDX-License-Identifier: Apache-2.0
/// A Dress is what a binding has changed at a widget to show its state, and what it gives back.
///
/// It changes nothing where the application has done the same before, and then gives back nothing.
#pragma once

#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>

#include "DataBinding/framework/EditState.h"

namespace DataBinding::Qt6 {

/// Names those that disable a widget or an action. It is enabled while none of them does.
enum class Disabler { Binding = 1, Property = 2, Command = 4 };
inline constexpr const char* disablersProperty = "databindingDisablers";

[[nodiscard]] inline bool IsDisabledBy(const QObject& object, Disabler disabler) {
  return (object.property(disablersProperty).toInt() & static_cast<int>(disabler)) != 0;
}
/// This may move the focus, which may end the widget.
template <class Object>
void SetDisabledBy(Object& object, Disabler disabler, bool isDisabled) {
  const int others = object.property(disablersProperty).toInt() & ~static_cast<int>(disabler);
  const int all = isDisabled ? others | static_cast<int>(disabler) : others;
  object.setProperty(disablersProperty, all);
  object.setEnabled(all == 0);
}

class Dress {
 public:
  explicit Dress(QWidget* itsWidget) : widget(itsWidget) {}

  [[nodiscard]] QWidget* Widget() const { return widget; }
  /// Says what the user may do with the widget.
  enum class Use { Edit, Read, Nothing };
  void Allow(Use use);
  /// Shows the reason of an edit that was not filed, or nothing of it where there is none.
  void ShowReason(EditState state, const QString& reason);

  /// Returns the text for a place where Qt shows tags as rich text. A reason quotes what the user
  /// has typed, and no tags are meant there.
  [[nodiscard]] static QString AsPlain(const QString& reason);

 private:
  void SetEnabled(bool on);
  void SetReadOnly(bool on);
  void Mark(const char* property, bool on);

  QPointer<QWidget> widget;
  bool hasDisabled = false;
  bool hasMadeReadOnly = false;
  QString shown;  // the reason; null while none is shown
  QString formerTip;
  QString formerDescription;
};

}  // namespace DataBinding::Qt6

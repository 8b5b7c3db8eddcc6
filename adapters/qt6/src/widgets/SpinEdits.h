// SPDX-License-Identifier: Apache-2.0
/// SpinEdits tells a binding which changes of a spin box the user has made. The box itself
/// announces all of them alike, also those of the program and of a range that has become narrower.
///
/// The line edit within the box announces typed text. Everything else that the user does begins
/// with an event of the box: a key, a turn of the wheel, a press on an arrow, the timer that
/// repeats it, the menu. A change that comes before control has returned to the loop is taken for
/// the user's.
#pragma once

#include <QAbstractSpinBox>
#include <QCalendarWidget>
#include <QLineEdit>
#include <QObject>
#include <QPointer>

#include "DataBindingQt6/widgets/Binding.h"

namespace DataBinding::Qt6 {

class SpinEdits final : public QObject {
 public:
  /// Makes one that watches a box for a binding, and ends with the binding.
  static SpinEdits& Of(QAbstractSpinBox& box, Binding& binding);

  /// The value has changed.
  void TellChange();

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  SpinEdits(QAbstractSpinBox& box, Binding& itsBinding);
  void WatchLine(const QLineEdit& line);
  void WatchCalendar(QObject& watched);
  void NoteEvent();
  void Finish();

  Binding& binding;
  QPointer<QCalendarWidget> calendar;
  bool isTyping = false;  // the line edit has announced a text that the box has not read yet
  bool isStepping = false;
  bool hasText = false;  // something was typed that the box may still correct
  bool isLeaving = true;
};

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
#include "SpinEdits.h"

#include <QDateTimeEdit>
#include <QEvent>
#include <utility>

#include "Leaving.h"

namespace DataBinding::Qt6 {

SpinEdits& SpinEdits::Of(QAbstractSpinBox& box, Binding& binding) {
  return *new SpinEdits(box, binding);
}

SpinEdits::SpinEdits(QAbstractSpinBox& box, Binding& itsBinding)
    : QObject(&itsBinding), binding(itsBinding) {
  box.installEventFilter(this);
  if (const auto* line = box.findChild<QLineEdit*>()) WatchLine(*line);
  connect(&box, &QAbstractSpinBox::editingFinished, this, &SpinEdits::Finish);
}

/// The line edit tells of the user's edit, then the box reads the text, and then the text is
/// announced.
void SpinEdits::WatchLine(const QLineEdit& line) {
  connect(&line, &QLineEdit::textEdited, this, [this] {
    isTyping = true;
    hasText = true;
    isStepping = false;
  });
  connect(&line, &QLineEdit::textChanged, this, [this] {
    if (std::exchange(isTyping, false)) binding.typed();
  });
}

/// The calendar is made when it is first opened, or set by the application. The box has taken the
/// date when it comes here, since it was connected before.
void SpinEdits::WatchCalendar(QObject& watched) {
  auto* const edit = qobject_cast<QDateTimeEdit*>(&watched);
  if (edit == nullptr || !edit->calendarPopup() || calendar == edit->calendarWidget()) return;
  calendar = edit->calendarWidget();
  connect(calendar, &QCalendarWidget::clicked, &binding, &Binding::chosen);
  connect(calendar, &QCalendarWidget::activated, &binding, &Binding::chosen);
}

void SpinEdits::Finish() {
  if (!std::exchange(hasText, false)) return;
  const QPointer<SpinEdits> alive(this);
  binding.typed();
  if (alive && isLeaving) binding.finished();
}

void SpinEdits::TellChange() {
  if (std::exchange(isStepping, false)) binding.chosen();
}

bool SpinEdits::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ContextMenu:
      isStepping = true;  // the menu has a loop of its own
      break;
    case QEvent::FocusOut:
      isLeaving = LeavesWidget(*event);
      break;
    case QEvent::FocusIn:
      isLeaving = true;
      if (isStepping) NoteEvent();  // the menu is closed
      break;
    case QEvent::KeyPress:
    case QEvent::Wheel:
    case QEvent::MouseButtonPress:
    case QEvent::Timer:
      WatchCalendar(*watched);
      NoteEvent();
      break;
    default:
      break;
  }
  return false;
}

void SpinEdits::NoteEvent() {
  isStepping = true;
  QMetaObject::invokeMethod(
      this, [this] { isStepping = false; }, Qt::QueuedConnection);
}

}  // namespace DataBinding::Qt6

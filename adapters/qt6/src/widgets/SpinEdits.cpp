// SPDX-License-Identifier: Apache-2.0
#include "SpinEdits.h"

#include <QEvent>
#include <QLineEdit>
#include <utility>

namespace DataBinding::Qt6 {

SpinEdits& SpinEdits::Of(QAbstractSpinBox& box, Binding& binding) {
  return *new SpinEdits(box, binding);
}

/// The line edit tells of the user's edit, then the box reads the text, and then the text is
/// announced.
SpinEdits::SpinEdits(QAbstractSpinBox& box, Binding& itsBinding)
    : QObject(&itsBinding), binding(itsBinding) {
  box.installEventFilter(this);
  const auto* const line = box.findChild<QLineEdit*>();
  if (line == nullptr) return;
  connect(line, &QLineEdit::textEdited, this, [this] {
    isTyping = true;
    isStepping = false;
  });
  connect(line, &QLineEdit::textChanged, this, [this] {
    if (std::exchange(isTyping, false)) binding.typed();
  });
}

void SpinEdits::TellChange() {
  if (std::exchange(isStepping, false)) binding.chosen();
}

bool SpinEdits::eventFilter(QObject* /*watched*/, QEvent* event) {
  switch (event->type()) {
    case QEvent::ContextMenu:
      isStepping = true;  // the menu has a loop of its own
      break;
    case QEvent::KeyPress:
    case QEvent::Wheel:
    case QEvent::MouseButtonPress:
    case QEvent::Timer:
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

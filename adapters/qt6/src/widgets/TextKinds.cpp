// SPDX-License-Identifier: Apache-2.0
// This file holds the traits of the widgets that show texts.

#include "TextKinds.h"

#include <QCompleter>
#include <QLCDNumber>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

#include "DataBindingQt6/widgets/Bind.h"

namespace DataBinding::Qt6 {

void SetTextKeepingCaret(QLineEdit& edit, const QString& text) {
  if (edit.text() == text) return;
  const auto caret = edit.cursorPosition();
  const auto begin = edit.selectionStart();
  const auto length = edit.selectionLength();
  edit.setText(text);
  if (begin < 0) {
    edit.setCursorPosition(caret);
  } else if (caret == begin) {
    edit.setSelection(begin + length, -length);
  } else {
    edit.setSelection(begin, length);
  }
}

template <>
struct WidgetTraits<QLineEdit> {
  using Form = QString;
  static QString Read(const QLineEdit& edit) { return edit.text(); }
  static void Write(QLineEdit& edit, const QString& text) { SetTextKeepingCaret(edit, text); }
  static void Clear(QLineEdit& edit) { edit.clear(); }
  static void Connect(QLineEdit& edit, Binding& binding) {
    QObject::connect(&edit, &QLineEdit::textEdited, &binding, &Binding::typed);
    // The edit takes the text after this hears of it.
    const auto chosen = qOverload<const QString&>(&QCompleter::activated);
    if (const QCompleter* const completer = edit.completer()) {
      QObject::connect(completer, chosen, &binding, &Binding::typed, Qt::QueuedConnection);
    }
  }
};

/// A QPlainTextEdit announces changes of the program as those of the user. While setPlainText
/// announces, it has the undo of the document switched off, and after clear() the document is not
/// modified. An editor whose undo the application has switched off is edited while it has the
/// focus.
template <>
struct WidgetTraits<QPlainTextEdit> {
  using Form = QString;
  static constexpr bool takesEnter = true;
  static QString Read(const QPlainTextEdit& edit) { return edit.toPlainText(); }
  static void Write(QPlainTextEdit& edit, const QString& text) {
    if (edit.toPlainText() == text) return;
    const QTextCursor former = edit.textCursor();
    const auto anchor = former.anchor();
    const auto caret = former.position();
    const int scrolled = edit.verticalScrollBar()->value();
    edit.setPlainText(text);
    QTextCursor cursor = edit.textCursor();
    const int end = edit.document()->characterCount() - 1;
    cursor.setPosition(std::min(anchor, end));
    cursor.setPosition(std::min(caret, end), QTextCursor::KeepAnchor);
    edit.setTextCursor(cursor);
    edit.verticalScrollBar()->setValue(scrolled);
  }
  static void Clear(QPlainTextEdit& edit) { edit.clear(); }
  static void Connect(QPlainTextEdit& edit, Binding& binding) {
    const bool hasUndo = edit.document()->isUndoRedoEnabled();
    QObject::connect(&edit, &QPlainTextEdit::textChanged, &binding, [&edit, &binding, hasUndo] {
      const bool isUsers = hasUndo ? edit.document()->isUndoRedoEnabled() : edit.hasFocus();
      // An undo may lead back to the text that was written, which is not modified.
      const QTextDocument& document = *edit.document();
      if (isUsers && (document.isModified() || document.isRedoAvailable())) binding.typed();
    });
  }
};

template <>
struct WidgetTraits<QLabel> {
  using Form = QString;
  static void Write(QLabel& label, const QString& text) { label.setText(text); }
  static void Clear(QLabel& label) { label.clear(); }
};

Binding& Bind(QLineEdit* edit, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(edit, details::widgetOps<QLineEdit>, source, property, options);
}

template <>
struct WidgetTraits<QLCDNumber> {
  using Form = QString;
  static void Write(QLCDNumber& number, const QString& text) { number.display(text); }
  static void Clear(QLCDNumber& number) { number.display(QString()); }
};

Binding& Bind(QPlainTextEdit* edit, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(edit, details::widgetOps<QPlainTextEdit>, source, property, options);
}

Binding& Bind(QLCDNumber* number, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(number, details::widgetOps<QLCDNumber>, source, property, options);
}

Binding& Bind(QLabel* label, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(label, details::widgetOps<QLabel>, source, property, options);
}

}  // namespace DataBinding::Qt6

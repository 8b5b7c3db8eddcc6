// SPDX-License-Identifier: Apache-2.0
// This file holds the traits of the widgets that show texts.

#include <QLabel>
#include <QLineEdit>

#include "DataBindingQt6/widgets/Bind.h"

namespace DataBinding::Qt6 {

/// The caret and the selection stay where they are.
template <>
struct WidgetTraits<QLineEdit> {
  using Form = QString;
  static QString Read(const QLineEdit& edit) { return edit.text(); }
  static void Write(QLineEdit& edit, const QString& text) {
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
  static void Clear(QLineEdit& edit) { edit.clear(); }
  static void Connect(QLineEdit& edit, Binding& binding) {
    QObject::connect(&edit, &QLineEdit::textEdited, &binding, &Binding::typed);
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

Binding& Bind(QLabel* label, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(label, details::widgetOps<QLabel>, source, property, options);
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
// This file holds the traits of the widgets in which the user chooses.

#include <QAbstractButton>

#include "DataBindingQt6/widgets/Bind.h"

namespace DataBinding::Qt6 {

template <>
struct WidgetTraits<QAbstractButton> {
  using Form = bool;
  static bool Read(const QAbstractButton& button) { return button.isChecked(); }
  static void Write(QAbstractButton& button, bool isChecked) { button.setChecked(isChecked); }
  static void Clear(QAbstractButton& button) { button.setChecked(false); }
  static void Connect(QAbstractButton& button, Binding& binding) {
    QObject::connect(&button, &QAbstractButton::clicked, &binding, &Binding::chosen);
  }
};

Binding& Bind(QAbstractButton* button, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(button, details::widgetOps<QAbstractButton>, source, property,
                              options);
}

}  // namespace DataBinding::Qt6

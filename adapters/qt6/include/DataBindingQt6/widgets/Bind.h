// SPDX-License-Identifier: Apache-2.0
/// Bind shows a property in a widget, by name, in the scope of the widget (Scope.h), and files what
/// the user makes of it. Source, property, scope and widget may come and go in any order.
///
/// | Widget | shows | of a property that is |
/// |---|---|---|
/// | QLineEdit, QPlainTextEdit, QLabel, QLCDNumber | its text | of any type that has a form |
/// | QSpinBox, QDoubleSpinBox, QAbstractSlider, QDial, QProgressBar | the number | any number |
/// | QAbstractButton that is checkable | whether it is checked | a truth value |
/// | QButtonGroup | the button by its id, or by its object name or text | a number, a text |
/// | QComboBox | the entry by its index, or by its text | a number, a text |
/// | QDateEdit, QTimeEdit, QDateTimeEdit | the date or time | a text as in ISO 8601 |
///
/// Enumerations are texts. A property that does not fit is not shown, and Status() says so.
///
/// - What the program changes at a widget is no edit, and the next value overwrites it. What it
///   inserts into a QPlainTextEdit looks like typing, though.
/// - A half typed number out of range is no edit yet. Dates are local; an edit loses their zone.
/// - A value beyond the range of a widget is shown as its end, and stays as it is. Set the range
///   before Bind, or call showAgain() after it.
/// - Before Bind, make a combo box editable, set its model, give a group its buttons and ids, and a
///   QLineEdit its completer.
/// - Numbers as text are the same in every locale; spin boxes show them as the user's country does.
/// - A date or time that is none is shown as the earliest one; setSpecialValueText(" ") hides that.
/// - A QValidator keeps the user from finishing and gives no reason; let the property validate.
/// - A text with tags is shown as rich text by a QLabel unless its textFormat is Qt::PlainText.
/// - Radio buttons that exclude each other belong into a QButtonGroup, which is bound as one.
///
///   Qt6::SetScope(&window, registrar.GetRootProvider());
///   Qt6::Bind(nameEdit, L"Person", L"Name");
///   Qt6::Bind(ageBox, L"Person", L"Age", {.reasonIn = hint});
#pragma once

#include "DataBinding/foundation/String.h"
#include "DataBindingQt6/Export.h"
#include "DataBindingQt6/widgets/BindOptions.h"
#include "DataBindingQt6/widgets/Binding.h"
#include "DataBindingQt6/widgets/WidgetTraits.h"
#include "DataBindingQt6/widgets/details/WidgetOps.h"

class QAbstractButton;
class QAbstractSlider;
class QButtonGroup;
class QComboBox;
class QDateEdit;
class QDateTimeEdit;
class QDoubleSpinBox;
class QLCDNumber;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QSpinBox;
class QTimeEdit;

namespace DataBinding::Qt6 {

/// Binds a widget, in place of the property to which it was bound before, and drops what was typed
/// for that. The binding belongs to the widget. A null widget gets a binding that shows and files
/// nothing. What a getter throws leaves the call, and the widget is bound to nothing then.
///@{
DATABINDING_QT6_API Binding& Bind(QLineEdit* edit, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QPlainTextEdit* edit, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QLabel* label, const VtrString& source, const VtrString& property,
                                  const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QLCDNumber* number, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QSpinBox* box, const VtrString& source, const VtrString& property,
                                  const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QDoubleSpinBox* box, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QAbstractSlider* slider, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QProgressBar* bar, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QAbstractButton* button, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QButtonGroup* group, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QComboBox* box, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QDateTimeEdit* edit, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QDateEdit* edit, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
DATABINDING_QT6_API Binding& Bind(QTimeEdit* edit, const VtrString& source,
                                  const VtrString& property, const BindOptions& options = {});
///@}

/// Binds a widget of the application's own, for which it has specialised WidgetTraits.
template <HasWidgetTraits W>
Binding& Bind(W* widget, const VtrString& source, const VtrString& property,
              const BindOptions& options = {}) {
  return details::MakeBinding(widget, details::widgetOps<W>, source, property, options);
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// The table of the kinds of widgets: how the user gives each another value, and what it shows.
#pragma once

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>
#include <array>
#include <ostream>

#include "DataBinding/reflection/Value.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/widgets/Bind.h"

namespace DataBinding::Qt6::Testing {

struct WidgetKind {
  const char* name;
  const wchar_t* property;
  /// The value that the user changes, what it becomes by that, and one that comes from elsewhere.
  std::array<Value, 3> values;
  /// Makes a widget in the window and binds it.
  Binding& (*bind)(QWidget* window, const VtrString& property, const BindOptions& options);
  /// Changes the first value to the second one, as the user does it.
  void (*enter)(QWidget* widget);
  /// Does the same as a program.
  void (*change)(QWidget* widget);
  /// What the widget shows.
  QString (*shown)(const QWidget* widget);

  friend void PrintTo(const WidgetKind& kind, std::ostream* out) { *out << kind.name; }
};

template <class W>
Binding& BindNew(QWidget* window, const VtrString& property, const BindOptions& options) {
  auto* const widget = new W(window);
  widget->show();
  return Bind(widget, L"Thing", property, options);
}

template <const char* Keys>
void TypeAll(QWidget* widget) {
  QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(widget, Keys);
}

template <auto Key>
void Press(QWidget* widget) {
  QTest::keyClick(widget, Key);
}

template <const char* Property, auto Content>
void SetContent(QWidget* widget) {
  widget->setProperty(Property, Content);
}

template <const char* Property>
QString ContentOf(const QWidget* widget) {
  return widget->property(Property).toString();
}

inline constexpr char word[] = "word", text[] = "text", value[] = "value", checked[] = "checked",
                      four[] = "4", half[] = "2.5";

inline const std::array widgetKinds{
    WidgetKind{"LineEdit",
               L"Text",
               {L"", L"word", L"other"},
               &BindNew<QLineEdit>,
               &TypeAll<word>,
               &SetContent<text, word>,
               &ContentOf<text>},
    WidgetKind{"LineEditOfNumber",
               L"Number",
               {3, 4, 5},
               &BindNew<QLineEdit>,
               &TypeAll<four>,
               &SetContent<text, four>,
               &ContentOf<text>},
    WidgetKind{"SpinBox",
               L"Number",
               {3, 4, 5},
               &BindNew<QSpinBox>,
               &TypeAll<four>,
               &SetContent<value, 4>,
               &ContentOf<value>},
    WidgetKind{"SpinBoxByArrow",
               L"Number",
               {3, 4, 5},
               &BindNew<QSpinBox>,
               &Press<Qt::Key_Up>,
               &SetContent<value, 4>,
               &ContentOf<value>},
    WidgetKind{"SpinBoxOfReal",
               L"Real",
               {3.0, 4.0, 5.0},
               &BindNew<QSpinBox>,
               &TypeAll<four>,
               &SetContent<value, 4>,
               &ContentOf<value>},
    WidgetKind{"DoubleSpinBox",
               L"Real",
               {0.5, 2.5, 5.0},
               &BindNew<QDoubleSpinBox>,
               &TypeAll<half>,
               &SetContent<value, 4>,
               &ContentOf<value>},
    WidgetKind{"CheckBox",
               L"Flag",
               {false, true, false},
               &BindNew<QCheckBox>,
               &Press<Qt::Key_Space>,
               &SetContent<checked, true>,
               &ContentOf<checked>},
};

}  // namespace DataBinding::Qt6::Testing

// SPDX-License-Identifier: Apache-2.0
/// The table of the kinds of widgets: how the user gives each another value, and what it shows.
#pragma once

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDial>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <array>
#include <concepts>
#include <ostream>
#include <utility>

#include "DataBinding/reflection/Value.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/widgets/Bind.h"

namespace DataBinding::Qt6 {

namespace Testing {

/// A widget of an application's own, which shows quarters.
class Knob : public QDial {
 public:
  using QDial::QDial;
};

}  // namespace Testing

template <>
struct WidgetTraits<Testing::Knob> {
  using Form = double;
  static double Read(const Testing::Knob& knob) { return knob.sliderPosition() / 4.0; }
  static void Write(Testing::Knob& knob, double level) {
    knob.setValue(static_cast<int>(level * 4));
  }
  static void Connect(Testing::Knob& knob, Binding& binding) {
    QObject::connect(&knob, &QDial::actionTriggered, &binding, &Binding::chosen);
  }
};

}  // namespace DataBinding::Qt6

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

template <class W>
Binding& BindMoment(QWidget* window, const VtrString& property, const BindOptions& options) {
  auto* const edit = new W(window);
  edit->setDisplayFormat(std::same_as<W, QDateEdit>   ? "dd.MM.yyyy"
                         : std::same_as<W, QTimeEdit> ? "ss:mm:hh"
                                                      : "dd.MM.yyyy hh:mm:ss");
  edit->show();
  return Bind(edit, L"Thing", property, options);
}

template <bool IsEditable>
Binding& BindCombo(QWidget* window, const VtrString& property, const BindOptions& options) {
  auto* const box = new QComboBox(window);
  box->setEditable(IsEditable);
  box->addItems({"zero", "one", "two"});
  box->show();
  return Bind(box, L"Thing", property, options);
}

inline Binding& BindGroup(QWidget* window, const VtrString& property, const BindOptions& options) {
  auto* const group = new QButtonGroup(window);
  int id = 0;
  for (const char* name : {"zero", "one", "two"}) {
    auto* const button = new QRadioButton(QString("&") + name, window);
    group->addButton(button, id++);
    button->show();
  }
  return Bind(group, L"Thing", property, options);
}

inline QButtonGroup& GroupOf(const QWidget* widget) {
  return *static_cast<const QRadioButton*>(widget)->group();
}
inline void PressSecond(QWidget* widget) {
  QTest::keyClick(GroupOf(widget).button(1), Qt::Key_Space);
}
inline void CheckSecond(QWidget* widget) { GroupOf(widget).button(1)->setChecked(true); }
inline QString CheckedText(const QWidget* widget) {
  const auto* const button = GroupOf(widget).checkedButton();
  return button == nullptr ? QString() : button->text().mid(1);
}
inline QString CheckedId(const QWidget* widget) {
  return QString::number(GroupOf(widget).checkedId());
}
template <class Moment>
QString MomentOf(const QWidget* widget) {
  constexpr const char* name = std::same_as<Moment, QDate>   ? "date"
                               : std::same_as<Moment, QTime> ? "time"
                                                             : "dateTime";
  return widget->property(name).template value<Moment>().toString(Qt::ISODate);
}

inline constexpr char word[] = "word", text[] = "text", value[] = "value", checked[] = "checked",
                      four[] = "4", half[] = "2.5", currentText[] = "currentText",
                      currentIndex[] = "currentIndex", plainText[] = "plainText", one[] = "one",
                      date[] = "date", time[] = "time", six[] = "06";

// NOLINTNEXTLINE(readability-function-size): it has the columns of the table
inline WidgetKind Row(const char* name, const wchar_t* property, std::array<Value, 3> values,
                      decltype(WidgetKind::bind) bind, decltype(WidgetKind::enter) enter,
                      decltype(WidgetKind::change) change, decltype(WidgetKind::shown) shown) {
  return {name, property, std::move(values), bind, enter, change, shown};
}

inline const std::array widgetKinds{
    Row("LineEdit", L"Text", {L"", L"word", L"other"}, &BindNew<QLineEdit>, &TypeAll<word>,
        &SetContent<text, word>, &ContentOf<text>),
    Row("LineEditOfNumber", L"Number", {3, 4, 5}, &BindNew<QLineEdit>, &TypeAll<four>,
        &SetContent<text, four>, &ContentOf<text>),
    Row("PlainTextEdit", L"Text", {L"a\nb", L"word", L"other"}, &BindNew<QPlainTextEdit>,
        &TypeAll<word>, &SetContent<plainText, word>, &ContentOf<plainText>),
    Row("SpinBox", L"Number", {3, 4, 5}, &BindNew<QSpinBox>, &TypeAll<four>, &SetContent<value, 4>,
        &ContentOf<value>),
    Row("SpinBoxByArrow", L"Number", {3, 4, 5}, &BindNew<QSpinBox>, &Press<Qt::Key_Up>,
        &SetContent<value, 4>, &ContentOf<value>),
    Row("SpinBoxOfReal", L"Real", {3.0, 4.0, 5.0}, &BindNew<QSpinBox>, &TypeAll<four>,
        &SetContent<value, 4>, &ContentOf<value>),
    Row("DoubleSpinBox", L"Real", {0.5, 2.5, 5.0}, &BindNew<QDoubleSpinBox>, &TypeAll<half>,
        &SetContent<value, 4>, &ContentOf<value>),
    Row("DoubleSpinBoxOfWhole", L"Number", {3, 4, 5}, &BindNew<QDoubleSpinBox>, &TypeAll<four>,
        &SetContent<value, 4>, &ContentOf<value>),
    Row("Slider", L"Number", {3, 4, 5}, &BindNew<QSlider>, &Press<Qt::Key_Up>,
        &SetContent<value, 4>, &ContentOf<value>),
    Row("Dial", L"Real", {3.0, 4.0, 5.0}, &BindNew<QDial>, &Press<Qt::Key_Up>,
        &SetContent<value, 4>, &ContentOf<value>),
    Row("CheckBox", L"Flag", {false, true, false}, &BindNew<QCheckBox>, &Press<Qt::Key_Space>,
        &SetContent<checked, true>, &ContentOf<checked>),
    Row("RadioButtonsByText", L"Text", {L"zero", L"one", L"two"}, &BindGroup, &PressSecond,
        &CheckSecond, &CheckedText),
    Row("RadioButtonsById", L"Number", {0, 1, 2}, &BindGroup, &PressSecond, &CheckSecond,
        &CheckedId),
    Row("ComboBoxByText", L"Text", {L"zero", L"one", L"two"}, &BindCombo<false>,
        &Press<Qt::Key_Down>, &SetContent<currentText, one>, &ContentOf<currentText>),
    Row("ComboBoxByIndex", L"Number", {0, 1, 2}, &BindCombo<false>, &Press<Qt::Key_Down>,
        &SetContent<currentIndex, 1>, &ContentOf<currentIndex>),
    Row("ComboBoxEditable", L"Text", {L"zero", L"word", L"other"}, &BindCombo<true>, &TypeAll<word>,
        &SetContent<currentText, text>, &ContentOf<currentText>),
    Row(
        "DateEdit", L"Text", {L"2026-01-05", L"2026-01-06", L"2026-02-01"}, &BindMoment<QDateEdit>,
        &Press<Qt::Key_Up>, [](QWidget* edit) { edit->setProperty(date, QDate(2026, 1, 6)); },
        &MomentOf<QDate>),
    Row(
        "DateEditByKeys", L"Text", {L"2026-01-05", L"2026-01-06", L"2026-02-01"},
        &BindMoment<QDateEdit>, [](QWidget* edit) { QTest::keyClicks(edit, six); },
        [](QWidget* edit) { edit->setProperty(date, QDate(2026, 1, 6)); }, &MomentOf<QDate>),
    Row(
        "TimeEdit", L"Text", {L"10:00:00", L"10:00:01", L"11:00:00"}, &BindMoment<QTimeEdit>,
        &Press<Qt::Key_Up>, [](QWidget* edit) { edit->setProperty(time, QTime(10, 0, 1)); },
        &MomentOf<QTime>),
    Row(
        "DateTimeEdit", L"Text",
        {L"2026-01-05T10:00:00", L"2026-01-06T10:00:00", L"2026-02-01T10:00:00"},
        &BindMoment<QDateTimeEdit>, &Press<Qt::Key_Up>,
        [](QWidget* edit) { edit->setProperty(date, QDate(2026, 1, 6)); }, &MomentOf<QDateTime>),
    Row("OwnWidget", L"Real", {0.5, 0.75, 1.5}, &BindNew<Knob>, &Press<Qt::Key_Up>,
        &SetContent<value, 3>,
        [](const QWidget* knob) {
          return QString::number(static_cast<const Knob*>(knob)->value() / 4.0);
        }),
};

}  // namespace DataBinding::Qt6::Testing

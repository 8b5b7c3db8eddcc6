// SPDX-License-Identifier: Apache-2.0
// This file holds the traits of the widgets that show dates and times. They ignore a date that is
// none, and would go on to show the one of the former record; so they show their earliest one.

#include <QCalendarWidget>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QTimeEdit>

#include "DataBindingQt6/widgets/Bind.h"
#include "SpinEdits.h"

namespace DataBinding::Qt6 {

namespace {

/// A box that does not track the keyboard has its new date only when the edit is finished.
template <class Moment>
Moment Held(const QDateTimeEdit& edit, const Moment& known, const Moment& typed) {
  return edit.keyboardTracking() || !typed.isValid() ? known : typed;
}

}  // namespace

template <>
struct WidgetTraits<QDateTimeEdit> {
  using Form = QDateTime;
  static QDateTime Read(const QDateTimeEdit& edit) {
    return Held(edit, edit.dateTime(), edit.locale().toDateTime(edit.text(), edit.displayFormat()));
  }
  static void Write(QDateTimeEdit& edit, const QDateTime& moment) {
    edit.setDateTime(moment.isValid() ? moment : edit.minimumDateTime());
  }
  static void Clear(QDateTimeEdit& edit) { Write(edit, QDateTime()); }
  static void Connect(QDateTimeEdit& edit, Binding& binding) {
    QObject::connect(&edit, &QDateTimeEdit::dateTimeChanged, &SpinEdits::Of(edit, binding),
                     &SpinEdits::TellChange);
  }
};

template <>
struct WidgetTraits<QDateEdit> {
  using Form = QDate;
  static QDate Read(const QDateEdit& edit) {
    return Held(edit, edit.date(), edit.locale().toDate(edit.text(), edit.displayFormat()));
  }
  static void Write(QDateEdit& edit, const QDate& date) {
    edit.setDate(date.isValid() ? date : edit.minimumDate());
  }
  static void Clear(QDateEdit& edit) { Write(edit, QDate()); }
  static void Connect(QDateEdit& edit, Binding& binding) {
    WidgetTraits<QDateTimeEdit>::Connect(edit, binding);
  }
};

template <>
struct WidgetTraits<QTimeEdit> {
  using Form = QTime;
  static QTime Read(const QTimeEdit& edit) {
    return Held(edit, edit.time(), edit.locale().toTime(edit.text(), edit.displayFormat()));
  }
  static void Write(QTimeEdit& edit, const QTime& time) {
    edit.setTime(time.isValid() ? time : edit.minimumTime());
  }
  static void Clear(QTimeEdit& edit) { Write(edit, QTime()); }
  static void Connect(QTimeEdit& edit, Binding& binding) {
    WidgetTraits<QDateTimeEdit>::Connect(edit, binding);
  }
};

Binding& Bind(QDateTimeEdit* edit, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(edit, details::widgetOps<QDateTimeEdit>, source, property, options);
}

Binding& Bind(QDateEdit* edit, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(edit, details::widgetOps<QDateEdit>, source, property, options);
}

Binding& Bind(QTimeEdit* edit, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(edit, details::widgetOps<QTimeEdit>, source, property, options);
}

}  // namespace DataBinding::Qt6

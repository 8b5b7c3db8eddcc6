// SPDX-License-Identifier: Apache-2.0
/// A WidgetForm tells how what a widget holds becomes a Value and is made of one.
///
/// A widget holds a number, a truth value, a text, a choice, a date, a time, or any type
/// that has a form (ValueForm.h). `Fits` says of which kinds of properties it can show the values,
/// `asText` that it shows the texts of values of any kind.
#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>
#include <cstdint>
#include <optional>

#include "DataBinding/framework/NumberConverter.h"
#include "DataBinding/reflection/Value.h"
#include "DataBinding/reflection/ValueForm.h"
#include "DataBindingQt6/values/Text.h"

namespace DataBinding::Qt6 {

/// A Choice is one of several things, each of which has a number and a name: an entry of a combo
/// box, a button of a group. A property that is a text is shown by the name, one that is a number
/// by the number, and only that of the two is there when it is written.
struct Choice {
  /// This is -1 where nothing is chosen.
  int number = -1;
  /// Holds nothing where the number counts.
  std::optional<QString> name = {};
};

namespace details {

/// Returns the number as the kind of the property has it, so that equal numbers are equal Values.
[[nodiscard]] DATABINDING_QT6_API Value NumberOfKind(const Value& number, ValueKind kind);

/// Stands for types of an application, which have a form.
template <class Form>
struct WidgetForm {
  static constexpr bool asText = false;
  static bool Fits(ValueKind kind) { return kind == ValueForm<Form>::kind; }
  static Value ToValue(const Form& held, ValueKind /*kind*/) { return DataBinding::ToValue(held); }
  static Form FromValue(const Value& value) {
    const auto made = DataBinding::FromValue<Form>(value);
    return made ? *made : Form();
  }
};

/// Numbers that the widget's type cannot be are shown as the nearest one that it can be.
template <class Form>
requires(std::is_arithmetic_v<Form> && !std::same_as<Form, bool>) struct WidgetForm<Form> {
  static constexpr bool asText = false;
  static bool Fits(ValueKind kind) { return IsNumber(kind); }
  static Value ToValue(const Form& held, ValueKind kind) { return NumberOfKind(held, kind); }
  static Form FromValue(const Value& value) {
    if (const auto* whole = value.Get<std::int64_t>()) return Nearest(*whole);
    if (const auto* natural = value.Get<std::uint64_t>()) return Nearest(*natural);
    if (const auto* real = value.Get<double>()) return Nearest(*real);
    return Form();
  }

 private:
  template <class Number>
  static Form Nearest(Number number) {
    static const auto converter = NumberConverter<Number, Form>();
    return converter.show(number);
  }
};

template <>
struct WidgetForm<QString> {
  static constexpr bool asText = true;
  static bool Fits(ValueKind kind) { return kind != ValueKind::Nothing; }
  static Value ToValue(const QString& held, ValueKind /*kind*/) { return ToVtrString(held); }
  static QString FromValue(const Value& value) { return ToQString(value.ToText()); }
};

template <>
struct WidgetForm<Choice> {
  static constexpr bool asText = false;
  static bool Fits(ValueKind kind) { return IsNumber(kind) || kind == ValueKind::Text; }
  static Value ToValue(const Choice& held, ValueKind kind) {
    if (kind == ValueKind::Text) return ToVtrString(held.name.value_or(QString()));
    return NumberOfKind(held.number, kind);
  }
  static Choice FromValue(const Value& value) {
    if (const auto* name = value.Get<VtrString>()) return {.name = ToQString(*name)};
    return {.number = WidgetForm<int>::FromValue(value)};
  }
};

/// Dates and times are texts as ISO 8601 has them. What is none is an invalid one.
template <class Moment>
struct MomentForm {
  static constexpr bool asText = false;
  static bool Fits(ValueKind kind) { return kind == ValueKind::Text; }
  static Value ToValue(const Moment& held, ValueKind /*kind*/) {
    return ToVtrString(held.toString(Qt::ISODate));
  }
  static Moment FromValue(const Value& value) {
    return Moment::fromString(ToQString(value.ToText()), Qt::ISODate);
  }
};
template <>
struct WidgetForm<QDate> : MomentForm<QDate> {};
template <>
struct WidgetForm<QTime> : MomentForm<QTime> {};
template <>
struct WidgetForm<QDateTime> : MomentForm<QDateTime> {};

}  // namespace details

}  // namespace DataBinding::Qt6

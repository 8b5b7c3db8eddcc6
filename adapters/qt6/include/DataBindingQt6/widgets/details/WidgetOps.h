// SPDX-License-Identifier: Apache-2.0
/// WidgetOps are what a binding does with a widget whose type it does not know. They are made of
/// the WidgetTraits of the type, one table for each type, so a binding does not
/// carry them.
///
/// A widget is given as the QObject that it is. It has to live, and to be of the table's type.
#pragma once

#include <QWidget>

#include "DataBinding/reflection/Value.h"
#include "DataBindingQt6/widgets/WidgetTraits.h"
#include "DataBindingQt6/widgets/details/WidgetForm.h"

namespace DataBinding::Qt6 {

class Binding;

namespace details {

struct WidgetOps {
  /// Says of which kinds of properties the widget shows the values, and whether it shows any by its
  /// text.
  ///@{
  bool (*fits)(ValueKind kind);
  bool asText;
  ///@}
  /// This is true for a widget in which Enter is a part of the text.
  bool takesEnter;
  /// Returns false while the destructor of the type has begun or is over.
  bool (*isWhole)(const QObject& widget);
  /// Returns the widgets that the user sees, of which the first has the scope.
  QWidgetList (*widgets)(QObject& widget);
  /// Returns what the widget holds, as a property of that kind has it. Null where the user does not
  /// edit it.
  Value (*read)(const QObject& widget, ValueKind kind);
  void (*write)(QObject& widget, const Value& value);
  /// Shows that there is no value. May be null.
  void (*clear)(QObject& widget);
  /// Has the binding told of edits. Null where the user does not edit the widget.
  void (*connect)(QObject& widget, Binding& binding);
};

template <class W>
struct TraitsOps {
  using Traits = WidgetTraits<W>;
  using Form = WidgetForm<typename Traits::Form>;

  static W& Of(QObject& widget) { return static_cast<W&>(widget); }
  static bool IsWhole(const QObject& widget) { return dynamic_cast<const W*>(&widget) != nullptr; }
  static QWidgetList Widgets(QObject& widget) {
    if constexpr (requires { Traits::Widgets(Of(widget)); }) {
      return Traits::Widgets(Of(widget));
    } else {
      return {&Of(widget)};
    }
  }
  static Value Read(const QObject& widget, ValueKind kind) {
    return Form::ToValue(Traits::Read(static_cast<const W&>(widget)), kind);
  }
  static void Write(QObject& widget, const Value& value) {
    Traits::Write(Of(widget), Form::FromValue(value));
  }
  static void Clear(QObject& widget) { Traits::Clear(Of(widget)); }
  static void Connect(QObject& widget, Binding& binding) { Traits::Connect(Of(widget), binding); }

  static constexpr bool isEdited = requires(W & widget, Binding& binding) {
    Traits::Connect(widget, binding);
  };
  static constexpr WidgetOps Make() {
    WidgetOps ops{&Form::Fits, Form::asText, false,   &IsWhole, &Widgets,
                  nullptr,     &Write,       nullptr, nullptr};
    if constexpr (requires { Traits::takesEnter; }) ops.takesEnter = Traits::takesEnter;
    if constexpr (requires(W & widget) { Traits::Clear(widget); }) ops.clear = &Clear;
    if constexpr (isEdited) {
      ops.read = &Read;
      ops.connect = &Connect;
    }
    return ops;
  }
};

/// The table of a type.
template <class W>
inline constexpr WidgetOps widgetOps = TraitsOps<W>::Make();

}  // namespace details

}  // namespace DataBinding::Qt6

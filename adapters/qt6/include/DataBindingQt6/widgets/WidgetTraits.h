// SPDX-License-Identifier: Apache-2.0
/// WidgetTraits tell Bind how a widget of a type is read and written, and which of its signals tell
/// an edit. An application specialises them for widgets of its own, as is done here for Qt's.
///
/// `Form` is what the widget holds: a type of number, bool, QString, QDate, QTime, QDateTime, a
/// Choice, or a type that has a form (ValueForm.h). A number shows properties of any type of number
/// and QString those of any type at all. `Write` shows a value. `Read` and `Connect` are left out
/// where the user does not edit the widget. These may be left out, too:
/// - `Clear` shows that there is no value;
/// - `takesEnter` is true where Enter is a part of the text;
/// - `Widgets` returns what the user sees of an object that is no widget itself.
///
/// `Connect` joins signals to three slots of the binding. Take signals that only the user causes
/// where there are such: what the program changes is no edit.
/// - `typed`: the user has changed the widget, and goes on, so it is not written meanwhile;
/// - `chosen`: the user has changed the widget, and is done with it;
/// - `finished`: the user is done with the widget. That Enter was pressed in it or the focus has
///   left it, the binding sees by itself.
///
/// An exception of these functions leaves Bind, and the widget is bound to nothing then. Later it
/// is treated like an exception of the property that is read or set there (Binding.h).
///
///   template <>
///   struct DataBinding::Qt6::WidgetTraits<Knob> {
///     using Form = double;
///     static double Read(const Knob& knob) { return knob.Level(); }
///     static void Write(Knob& knob, double level) { knob.SetLevel(level); }
///     static void Connect(Knob& knob, Binding& binding) {
///       QObject::connect(&knob, &Knob::turned, &binding, &Binding::chosen);
///     }
///   };
#pragma once

namespace DataBinding::Qt6 {

/// The primary template is never defined, so a type without traits is not bound.
template <class W>
struct WidgetTraits;

/// The types for which there are traits.
template <class W>
concept HasWidgetTraits = requires {
  typename WidgetTraits<W>::Form;
};

}  // namespace DataBinding::Qt6

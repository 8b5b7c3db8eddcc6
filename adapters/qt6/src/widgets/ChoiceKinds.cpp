// SPDX-License-Identifier: Apache-2.0
// This file holds the traits of the widgets in which the user chooses.

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QButtonGroup>
#include <QComboBox>

#include "DataBindingQt6/widgets/Bind.h"
#include "TextKinds.h"

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

/// A button of a group is known by its object name or, where it has none, by its text.
template <>
struct WidgetTraits<QButtonGroup> {
  using Form = Choice;
  static Choice Read(const QButtonGroup& group) {
    const auto* const checked = group.checkedButton();
    return {group.checkedId(), checked == nullptr ? QString() : NameOf(*checked)};
  }
  static void Write(QButtonGroup& group, const Choice& choice) {
    QAbstractButton* wanted = choice.name ? nullptr : group.button(choice.number);
    for (QAbstractButton* button : group.buttons()) {
      if (choice.name && NameOf(*button) == *choice.name) wanted = button;
    }
    wanted == nullptr ? Clear(group) : wanted->setChecked(true);
  }
  /// A group that is exclusive lets no button go without another.
  static void Clear(QButtonGroup& group) {
    auto* const checked = group.checkedButton();
    if (checked == nullptr) return;
    const bool isExclusive = group.exclusive();
    group.setExclusive(false);
    checked->setChecked(false);
    group.setExclusive(isExclusive);
  }
  static void Connect(QButtonGroup& group, Binding& binding) {
    QObject::connect(&group, &QButtonGroup::buttonClicked, &binding, &Binding::chosen);
  }
  static QWidgetList Widgets(const QButtonGroup& group) {
    QWidgetList widgets;
    for (QAbstractButton* button : group.buttons()) widgets.append(button);
    return widgets;
  }

 private:
  static QString NameOf(const QAbstractButton& button) {
    if (!button.objectName().isEmpty()) return button.objectName();
    return button.text().remove(QLatin1Char('&'));
  }
};

/// When its entries change, a combo box turns to another one by itself; then it is shown again.
template <>
struct WidgetTraits<QComboBox> {
  using Form = Choice;
  static Choice Read(const QComboBox& box) { return {box.currentIndex(), box.currentText()}; }
  static void Write(QComboBox& box, const Choice& choice) {
    const int index = choice.name
                          ? box.findText(*choice.name, Qt::MatchExactly | Qt::MatchCaseSensitive)
                          : choice.number;
    box.setCurrentIndex(index < box.count() ? index : -1);
    if (choice.name && box.isEditable()) SetTextKeepingCaret(*box.lineEdit(), *choice.name);
  }
  static void Clear(QComboBox& box) {
    box.setCurrentIndex(-1);
    box.clearEditText();
  }
  static void Connect(QComboBox& box, Binding& binding) {
    QObject::connect(&box, &QComboBox::activated, &binding, &Binding::chosen);
    if (box.isEditable()) {
      QObject::connect(box.lineEdit(), &QLineEdit::textEdited, &binding, &Binding::typed);
    }
    const auto* const model = box.model();
    QObject::connect(model, &QAbstractItemModel::modelReset, &binding, &Binding::showAgain);
    QObject::connect(model, &QAbstractItemModel::rowsInserted, &binding, &Binding::showAgain);
    QObject::connect(model, &QAbstractItemModel::rowsRemoved, &binding, &Binding::showAgain);
    QObject::connect(model, &QAbstractItemModel::dataChanged, &binding, &Binding::showAgain);
  }
};

Binding& Bind(QButtonGroup* group, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(group, details::widgetOps<QButtonGroup>, source, property, options);
}

Binding& Bind(QComboBox* box, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(box, details::widgetOps<QComboBox>, source, property, options);
}

Binding& Bind(QAbstractButton* button, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(button, details::widgetOps<QAbstractButton>, source, property,
                              options);
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
#include "Dress.h"

#include <QStyle>
#include <QTextDocument>
#include <QVariant>
#include <utility>

namespace DataBinding::Qt6 {

namespace {

constexpr const char* readOnlyProperty = "readOnly";

bool HasReadOnly(const QWidget& widget) {
  return widget.metaObject()->indexOfProperty(readOnlyProperty) >= 0;
}

}  // namespace

/// A widget whose kind is never read-only is disabled instead. Disabling a widget moves the focus,
/// which may end it.
void Dress::Allow(Use use) {
  const bool hasReadOnly = widget != nullptr && HasReadOnly(*widget);
  SetReadOnly(hasReadOnly && use == Use::Read);
  SetEnabled(use == Use::Edit || (hasReadOnly && use == Use::Read));
}

void Dress::SetEnabled(bool on) {
  if (widget == nullptr) return;
  const bool isOfApplication = !hasDisabled && widget->testAttribute(Qt::WA_ForceDisabled) &&
                               !IsDisabledBy(*widget, Disabler::Property);
  if (on != hasDisabled || isOfApplication) return;
  hasDisabled = !on;
  SetDisabledBy(*widget, Disabler::Binding, hasDisabled);
}

void Dress::SetReadOnly(bool on) {
  if (widget == nullptr) return;
  if (!on) {
    if (std::exchange(hasMadeReadOnly, false)) widget->setProperty(readOnlyProperty, false);
  } else if (!widget->property(readOnlyProperty).toBool()) {
    hasMadeReadOnly = true;
    widget->setProperty(readOnlyProperty, true);
  }
}

QString Dress::AsPlain(const QString& reason) {
  return Qt::mightBeRichText(reason) ? reason.toHtmlEscaped() : reason;
}

void Dress::ShowReason(EditState state, const QString& reason) {
  if (widget == nullptr) return;
  Mark("refused", state != EditState::Conflict && !reason.isEmpty());
  Mark("conflict", state == EditState::Conflict);
  if (shown.isNull() && reason.isEmpty()) return;
  if (shown.isNull()) {
    formerTip = widget->toolTip();
    formerDescription = widget->accessibleDescription();
  } else if (widget->toolTip() != AsPlain(shown)) {
    formerTip = widget->toolTip();  // the application has set another one meanwhile
  }
  shown = reason.isEmpty() ? QString() : reason;
  widget->setToolTip(shown.isNull() ? formerTip : AsPlain(reason));
  widget->setAccessibleDescription(shown.isNull() ? formerDescription : reason);
}

/// Style sheets look at such a property only when the widget is polished.
void Dress::Mark(const char* property, bool on) {
  if (widget->property(property).toBool() == on) return;
  widget->setProperty(property, on);
  widget->style()->unpolish(widget);
  widget->style()->polish(widget);
}

}  // namespace DataBinding::Qt6

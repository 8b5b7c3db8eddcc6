// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/Explain.h"

#include <QShortcut>
#include <QToolTip>
#include <QVariant>

#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/widgets/Binding.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Dress.h"

namespace DataBinding::Qt6 {

namespace {

/// The tool tip that the application has given a widget that is explained.
constexpr const char* formerTipProperty = "databindingFormerToolTip";

void SetReason(QWidget& widget, const QString& reason) {
  const QVariant former = widget.property(formerTipProperty);
  if (!former.isValid()) widget.setProperty(formerTipProperty, widget.toolTip());
  widget.setToolTip(Dress::AsPlain(reason));
}

void GiveBack(QWidget& widget) {
  const QVariant former = widget.property(formerTipProperty);
  if (!former.isValid()) return;
  widget.setToolTip(former.toString());
  widget.setProperty(formerTipProperty, QVariant());
}

QString LabelOf(const QWidget& widget) {
  return widget.objectName().isEmpty() ? QString::fromLatin1(widget.metaObject()->className())
                                       : widget.objectName();
}

}  // namespace

QStringList Explain(QWidget* window) {
  QStringList lines;
  if (window == nullptr) return lines;
  for (const Binding* binding : EditsOf(window).Bindings()) {
    QWidget& widget = *binding->Widget();
    const Framework::BindStatus status = binding->Status();
    if (status.IsConnected()) {
      GiveBack(widget);
    } else {
      SetReason(widget, ToQString(status.text));
      lines.append(LabelOf(widget) + QStringLiteral(": ") + ToQString(status.text));
    }
  }
  QToolTip::showText(window->mapToGlobal(window->rect().center()),
                     Dress::AsPlain(lines.join(QLatin1Char('\n'))), window);
  return lines;
}

void ExplainOn(QWidget* window, const QKeySequence& keys) {
  if (window == nullptr) return;
  auto* const shortcut = new QShortcut(keys, window);  // it belongs to the window
  QObject::connect(shortcut, &QShortcut::activated, window, [window] { Explain(window); });
}

}  // namespace DataBinding::Qt6

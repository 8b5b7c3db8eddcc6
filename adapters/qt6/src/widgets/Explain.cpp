// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/Explain.h"

#include <QShortcut>
#include <QToolTip>
#include <QVariant>
#include <vector>

#include "Bindings.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/widgets/Binding.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Dress.h"
#include "Join.h"

namespace DataBinding::Qt6 {

namespace {

/// The tool tip that the application has given a widget that is explained.
constexpr const char* formerTipProperty = "databindingFormerToolTip";

/// A widget may have several reasons.
void AddReason(QWidget& widget, const QString& reason) {
  const bool isFirst = !widget.property(formerTipProperty).isValid();
  const QString before = isFirst ? QString() : widget.toolTip() + QLatin1Char('\n');
  if (isFirst) widget.setProperty(formerTipProperty, widget.toolTip());
  widget.setToolTip(before + Dress::AsPlain(reason));
}

void GiveBack(QWidget& widget) {
  const QVariant former = widget.property(formerTipProperty);
  if (!former.isValid()) return;
  widget.setToolTip(former.toString());
  widget.setProperty(formerTipProperty, QVariant());
}

QString LabelOf(const QObject& object) {
  return object.objectName().isEmpty() ? QString::fromLatin1(object.metaObject()->className())
                                       : object.objectName();
}

/// A widget or an action, and how one thing that is bound at it stands.
struct Explained {
  QObject* object;
  Framework::BindStatus status;
};

const QWidget* WidgetAbove(const QObject* object) {
  while (object != nullptr && !object->isWidgetType()) object = object->parent();
  return static_cast<const QWidget*>(object);
}

std::vector<Explained> AllIn(QWidget& window) {
  std::vector<Explained> all;
  for (const Binding* binding : EditsOf(&window).Bindings()) {
    all.push_back({binding->Widget(), binding->Status()});
  }
  for (const QObject* child : window.findChildren<QObject*>()) {
    const auto* const join = dynamic_cast<const Join*>(child);
    if (join == nullptr || !IsWithin(WidgetAbove(join), window)) continue;
    all.push_back({join->parent(), join->Status()});
  }
  return all;
}

}  // namespace

QStringList Explain(QWidget* window) {
  QStringList lines;
  if (window == nullptr) return lines;
  const std::vector<Explained> all = AllIn(*window);
  for (const Explained& each : all) {
    if (auto* const widget = qobject_cast<QWidget*>(each.object)) GiveBack(*widget);
  }
  for (const Explained& each : all) {
    if (each.status.IsConnected()) continue;
    const QString reason = ToQString(each.status.text);
    if (auto* const widget = qobject_cast<QWidget*>(each.object)) AddReason(*widget, reason);
    lines.append(LabelOf(*each.object) + QStringLiteral(": ") + reason);
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

// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/BindState.h"

#include <QAction>
#include <QVariant>
#include <QWidget>
#include <functional>
#include <utility>

#include "DataBinding/framework/AnyBind.h"
#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/Variant.h"
#include "Dress.h"

namespace DataBinding::Qt6 {

namespace {

/// Writes one property of its parent by a property of a data source.
class StateJoin : public QObject {
 public:
  using Write = std::function<void(const Framework::AnyBind&)>;

  StateJoin(QObject& joined, const char* what, const VtrString& source, const VtrString& property,
            Write toWrite)
      : bind(VtrString(), source, property), write(std::move(toWrite)) {
    const QString name = QStringLiteral("DataBinding.%1").arg(QLatin1String(what));
    delete joined.findChild<QObject*>(name, Qt::FindDirectChildrenOnly);
    setObjectName(name);
    setParent(&joined);
    FollowScope(this, [this](IDataSourceProvider* scope) { Enter(scope); });
  }

 private:
  void Enter(IDataSourceProvider* scope) {
    changing.Cancel();  // a bind tells of another source more than once
    bind.Connect(scope);
    changing = bind.SubscribeToChanges([this] { write(bind); });
    write(bind);  // may end this object
  }

  Framework::AnyBind bind;
  Write write;
  Subscription changing;
};

template <class Object, class Set>
void JoinTruth(Object* object, const char* what, const VtrString& source, const VtrString& property,
               Set set) {
  if (object == nullptr) return;
  const auto write = [object, set](const Framework::AnyBind& bind) {
    const auto read = bind.Read();
    std::invoke(set, *object, read.value && ToVariant(*read.value).toBool());
  };
  new StateJoin(*object, what, source, property, write);  // it belongs to the object
}

template <class Form>
void JoinText(QWidget* widget, const char* what, const VtrString& source, const VtrString& property,
              void (QWidget::*set)(const QString&), Form form) {
  if (widget == nullptr) return;
  const auto write = [widget, set, form](const Framework::AnyBind& bind) {
    (widget->*set)(form(ToQString(bind.ReadText().value.value_or(VtrString()))));
  };
  new StateJoin(*widget, what, source, property, write);  // it belongs to the widget
}

}  // namespace

void BindEnabled(QWidget* widget, const VtrString& source, const VtrString& property) {
  JoinTruth(widget, "enabled", source, property,
            [](QWidget& enabled, bool on) { SetDisabledBy(enabled, Disabler::Property, !on); });
}

void BindEnabled(QAction* action, const VtrString& source, const VtrString& property) {
  JoinTruth(action, "enabled", source, property, &QAction::setEnabled);
}

void BindVisible(QWidget* widget, const VtrString& source, const VtrString& property) {
  JoinTruth(widget, "visible", source, property, &QWidget::setVisible);
}

void BindVisible(QAction* action, const VtrString& source, const VtrString& property) {
  JoinTruth(action, "visible", source, property, &QAction::setVisible);
}

void BindTitle(QWidget* window, const VtrString& source, const VtrString& property) {
  JoinText(window, "title", source, property, &QWidget::setWindowTitle,
           [](const QString& text) { return text; });
}

void BindToolTip(QWidget* widget, const VtrString& source, const VtrString& property) {
  JoinText(widget, "toolTip", source, property, &QWidget::setToolTip, &Dress::AsPlain);
}

}  // namespace DataBinding::Qt6

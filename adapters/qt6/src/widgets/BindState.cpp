// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/BindState.h"

#include <QAction>
#include <QVariant>
#include <QWidget>
#include <functional>
#include <utility>

#include "DataBinding/framework/AnyBind.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/Variant.h"
#include "Dress.h"
#include "Join.h"

namespace DataBinding::Qt6 {

namespace {

/// Writes one property of an object by a property of a data source.
class StateJoin final : public Join {
 public:
  using Write = std::function<void(const Framework::AnyBind&)>;

  StateJoin(QObject& joined, const char* what, const Framework::AnyBind& itsBind, Write toWrite)
      : Join(joined, what), bind(itsBind), write(std::move(toWrite)) {
    Follow();
  }

  [[nodiscard]] Framework::BindStatus Status() const override { return bind.Status(); }

 private:
  void Enter(IDataSourceProvider* scope) override {
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
void JoinTruth(Object* object, const char* what, const Framework::AnyBind& truth, Set set) {
  if (object == nullptr) return;
  const auto write = [object, set](const Framework::AnyBind& bind) {
    const auto read = bind.Read();
    std::invoke(set, *object, read.value && ToVariant(*read.value).toBool());
  };
  new StateJoin(*object, what, truth, write);  // it belongs to the object
}

template <class Object>
void JoinEnabling(Object* object, const Framework::AnyBind& truth) {
  JoinTruth(object, "enabled", truth,
            [](Object& enabled, bool on) { SetDisabledBy(enabled, Disabler::Property, !on); });
}

template <class Form>
void JoinText(QWidget* widget, const char* what, const Framework::AnyBind& text,
              void (QWidget::*set)(const QString&), Form form) {
  if (widget == nullptr) return;
  const auto write = [widget, set, form](const Framework::AnyBind& bind) {
    (widget->*set)(form(ToQString(bind.ReadText().value.value_or(VtrString()))));
  };
  new StateJoin(*widget, what, text, write);  // it belongs to the widget
}

}  // namespace

void BindEnabled(QWidget* widget, const VtrString& source, const VtrString& property,
                 const VtrString& context) {
  JoinEnabling(widget, {context, source, property});
}

void BindEnabled(QAction* action, const VtrString& source, const VtrString& property,
                 const VtrString& context) {
  JoinEnabling(action, {context, source, property});
}

void BindVisible(QWidget* widget, const VtrString& source, const VtrString& property,
                 const VtrString& context) {
  JoinTruth(widget, "visible", {context, source, property}, &QWidget::setVisible);
}

void BindVisible(QAction* action, const VtrString& source, const VtrString& property,
                 const VtrString& context) {
  JoinTruth(action, "visible", {context, source, property}, &QAction::setVisible);
}

void BindTitle(QWidget* window, const VtrString& source, const VtrString& property,
               const VtrString& context) {
  JoinText(window, "title", {context, source, property}, &QWidget::setWindowTitle,
           [](const QString& text) { return text; });
}

void BindToolTip(QWidget* widget, const VtrString& source, const VtrString& property,
                 const VtrString& context) {
  JoinText(widget, "toolTip", {context, source, property}, &QWidget::setToolTip, &Dress::AsPlain);
}

}  // namespace DataBinding::Qt6

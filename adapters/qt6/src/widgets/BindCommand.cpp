// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/BindCommand.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QPointer>
#include <utility>

#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/values/details/Guard.h"
#include "DataBindingQt6/widgets/EditsOf.h"

namespace DataBinding::Qt6 {

namespace {

/// Returns the window that a widget stands in. A menu and a floating dock belong to that of their
/// parent.
QWidget* OuterWindow(const QWidget& widget) {
  QWidget* window = widget.window();
  while (window->parentWidget() != nullptr &&
         (window->windowType() == Qt::Popup || window->windowType() == Qt::Tool)) {
    window = window->parentWidget()->window();
  }
  return window;
}

/// Returns the window whose edits are filed before a command that stands at an object.
QWidget* WindowOf(const QObject* object) {
  for (; object != nullptr; object = object->parent()) {
    const auto* const widget = qobject_cast<const QWidget*>(object);
    QWidget* const window = widget == nullptr ? nullptr : OuterWindow(*widget);
    if (window != nullptr && window->windowType() != Qt::Popup) return window;
  }
  return QApplication::activeWindow();
}

/// Joins its parent to an event.
class CommandJoin : public QObject {
 public:
  CommandJoin(QObject& joined, std::unique_ptr<Framework::EventBind> itsBind, bool commits)
      : bind(std::move(itsBind)), commitsEdits(commits) {
    const auto name = QStringLiteral("DataBinding.command");
    delete joined.findChild<QObject*>(name, Qt::FindDirectChildrenOnly);
    setObjectName(name);
    setParent(&joined);
  }

  template <class Object>
  Framework::EventBind& Follow(Object& object) {
    const auto enable = [this, &object] { object.setEnabled(bind->CanRaise()); };
    enabling = bind->SubscribeToChanges(enable);
    FollowScope(this, [this](IDataSourceProvider* scope) { bind->Connect(scope); });
    enable();
    return *bind;
  }

  void Raise() {
    const QPointer<CommandJoin> alive(this);
    details::Guard(L"command of a button", [&] {
      if (commitsEdits && !EditsOf(WindowOf(parent())).CommitAll().IsAccepted()) return;
      if (alive) bind->Raise();
    });
  }

 private:
  std::unique_ptr<Framework::EventBind> bind;
  bool commitsEdits;
  Subscription enabling;
};

template <class Object, class Signal>
Framework::EventBind& Join(Object* object, Signal signal,
                           std::unique_ptr<Framework::EventBind> bind,
                           const CommandOptions& options) {
  static Framework::EventBind none;
  if (object == nullptr || bind == nullptr) return none;
  auto* join = new CommandJoin(*object, std::move(bind), options.commitsEdits);
  QObject::connect(object, signal, join, &CommandJoin::Raise);
  return join->Follow(*object);
}

}  // namespace

Framework::EventBind& Bind(QAction* action, std::unique_ptr<Framework::EventBind> bind,
                           const CommandOptions& options) {
  return Join(action, &QAction::triggered, std::move(bind), options);
}

Framework::EventBind& Bind(QAbstractButton* button, std::unique_ptr<Framework::EventBind> bind,
                           const CommandOptions& options) {
  return Join(button, &QAbstractButton::clicked, std::move(bind), options);
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/BindCommand.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QPointer>
#include <functional>
#include <stdexcept>
#include <utility>

#include "DataBindingQt6/values/details/Guard.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Dress.h"
#include "Join.h"

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
class CommandJoin final : public Join {
 public:
  CommandJoin(QObject& joined, std::unique_ptr<Framework::EventBind> itsBind, bool commits)
      : Join(joined, "command"), bind(std::move(itsBind)), commitsEdits(commits) {}

  template <class Object>
  Framework::EventBind& Enable(Object& object) {
    enable = [this, &object] { SetDisabledBy(object, Disabler::Command, !bind->CanRaise()); };
    enabling = bind->SubscribeToChanges([this] { enable(); });
    Follow();
    enable();
    return *bind;
  }

  /// Says why the event cannot be raised, which the bind learns late where another signature was
  /// given to the event.
  void Raise() {
    const QPointer<CommandJoin> alive(this);
    details::Guard(L"command of a button", [&] {
      if (commitsEdits && !EditsOf(WindowOf(parent())).CommitAll().IsAccepted()) return;
      if (!alive || bind->Raise() || !alive) return;
      const Framework::BindStatus status = bind->Status();
      enable();
      if (status.state == Framework::BindStatus::State::Connected) return;
      throw std::runtime_error(status.text.ToUtf8());
    });
  }

  [[nodiscard]] Framework::BindStatus Status() const override { return bind->Status(); }

 private:
  void Enter(IDataSourceProvider* scope) override { bind->Connect(scope); }

  std::unique_ptr<Framework::EventBind> bind;
  bool commitsEdits;
  std::function<void()> enable;
  Subscription enabling;
};

template <class Object, class Signal>
Framework::EventBind& JoinEvent(Object* object, Signal signal,
                                std::unique_ptr<Framework::EventBind> bind,
                                const CommandOptions& options) {
  static Framework::EventBind none;
  if (object == nullptr || bind == nullptr) return none;
  auto* join = new CommandJoin(*object, std::move(bind), options.commitsEdits);
  QObject::connect(object, signal, join, &CommandJoin::Raise);
  return join->Enable(*object);
}

}  // namespace

Framework::EventBind& Bind(QAction* action, std::unique_ptr<Framework::EventBind> bind,
                           const CommandOptions& options) {
  return JoinEvent(action, &QAction::triggered, std::move(bind), options);
}

Framework::EventBind& Bind(QAbstractButton* button, std::unique_ptr<Framework::EventBind> bind,
                           const CommandOptions& options) {
  return JoinEvent(button, &QAbstractButton::clicked, std::move(bind), options);
}

}  // namespace DataBinding::Qt6

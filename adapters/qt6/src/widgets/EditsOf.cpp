// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/widgets/EditsOf.h"

#include <QAbstractItemView>
#include <QPointer>
#include <QStackedWidget>
#include <QTabWidget>
#include <algorithm>
#include <memory>
#include <utility>

#include "Bindings.h"
#include "DataBinding/framework/EditGroup.h"
#include "DataBinding/framework/EditSession.h"
#include "DataBindingQt6/values/details/Guard.h"

namespace DataBinding::Qt6 {

namespace {

constexpr const wchar_t* editsName = L"edits of a window";

/// There are few windows whose edits anybody asks for, and a window may have a thousand children.
/// So they are kept here, and not looked for among the children. The list is never given back,
/// because windows with static lifetime may end after it would.
std::vector<QPointer<WindowEdits>>& AllEdits() {
  static auto& all = *new std::vector<QPointer<WindowEdits>>;
  return all;
}

/// A dock or a palette that floats belongs to its window all the same.
QWidget* Outer(const QWidget& widget) {
  const bool isOwnWindow = widget.isWindow() && widget.windowType() != Qt::Tool;
  return isOwnWindow ? nullptr : widget.parentWidget();
}

/// Finishes the editor of a table's cell in which the user is.
void FinishCell(QWidget& window) {
  QWidget* at = window.focusWidget();
  for (; at != nullptr && at != &window; at = at->parentWidget()) {
    auto* const view = qobject_cast<QAbstractItemView*>(at->parentWidget());
    if (view != nullptr && at == view->viewport()) return view->setFocus(Qt::OtherFocusReason);
  }
}

/// Shows the pages on which a widget stands. What hears of that may end the widget.
void ShowPages(QWidget& widget) {
  for (QPointer<QWidget> page(&widget); page; page = page ? page->parentWidget() : nullptr) {
    auto* const stack = qobject_cast<QStackedWidget*>(page->parentWidget());
    if (stack == nullptr) continue;
    auto* const tabs = qobject_cast<QTabWidget*>(stack->parentWidget());
    tabs == nullptr ? stack->setCurrentWidget(page) : tabs->setCurrentWidget(page);
  }
}

}  // namespace

bool IsWithin(const QWidget* widget, const QWidget& window) {
  while (widget != nullptr && widget != &window) widget = Outer(*widget);
  return widget != nullptr;
}

WindowEdits::WindowEdits(QWidget* window) : QObject(window), toldTyped(HasTyped()) {
  std::erase_if(AllEdits(), [](const auto& edits) { return edits.isNull(); });
  AllEdits().emplace_back(this);
}

std::vector<Binding*> WindowEdits::Bindings() const {
  std::vector<Binding*> within;
  const auto* const window = static_cast<const QWidget*>(parent());
  if (window == nullptr) return within;
  for (Binding* binding : Qt6::Bindings::All()) {
    if (IsWithin(binding->Widget(), *window)) within.push_back(binding);
  }
  return within;
}

std::unique_ptr<EditGroup> WindowEdits::Group() const {
  auto group = std::make_unique<EditGroup>();
  for (const Binding* binding : Bindings()) {
    if (const EditSession* session = binding->Session()) group->Add(*session);
  }
  return group;
}

SetResult WindowEdits::CommitAll() {
  const QPointer<WindowEdits> alive(this);
  if (auto* const window = static_cast<QWidget*>(parent())) FinishCell(*window);
  if (!alive) return {};
  const auto group = Group();
  SetResult result = details::GuardResult(editsName, [&] { return group->CommitAll(); });
  if (result.IsAccepted() || !alive) return result;
  for (const Binding* binding : Bindings()) {
    const EditSession* const session = binding->Session();
    if (session == nullptr || !group->WasRefusedFirst(*session)) continue;
    const QPointer<QWidget> refused = binding->Widget();
    ShowPages(*refused);
    if (refused) refused->setFocus(Qt::OtherFocusReason);
    break;
  }
  return result;
}

SetResult WindowEdits::CheckAll() {
  const auto group = Group();
  return details::GuardResult(editsName, [&] { return group->CheckAll(); });
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the edits
void WindowEdits::RevertAll() {
  std::vector<QPointer<Binding>> reverted;
  for (Binding* binding : Bindings()) reverted.emplace_back(binding);
  for (const auto& binding : reverted) {
    if (binding) details::Guard(editsName, [&] { binding->Revert(); });
  }
}

bool WindowEdits::HasTyped() const {
  const auto* const window = static_cast<const QWidget*>(parent());
  return window != nullptr &&
         std::ranges::any_of(Qt6::Bindings::All(), [&](const Binding* binding) {
           return binding->HasTyped() && IsWithin(binding->Widget(), *window);
         });
}

void WindowEdits::TellOf(const Binding& changed) {
  const auto all = AllEdits();
  for (const auto& edits : all) {
    const auto* const window = edits ? static_cast<const QWidget*>(edits->parent()) : nullptr;
    if (window == nullptr || !IsWithin(changed.Widget(), *window)) continue;
    // A binding that ends with something typed is told, too, when it is gone.
    connect(&changed, &QObject::destroyed, edits, &WindowEdits::Tell,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
    edits->Tell();
  }
}

void WindowEdits::Tell() {
  const bool now = HasTyped();
  if (std::exchange(toldTyped, now) != now) Q_EMIT hasTypedChanged(now);
}

WindowEdits& EditsOf(QWidget* window) {
  if (window == nullptr) {
    static WindowEdits none(nullptr);
    return none;
  }
  for (const auto& edits : AllEdits()) {
    if (edits && edits->parent() == window) return *edits;
  }
  return *new WindowEdits(window);  // it belongs to the window
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
// This file holds what a binding does with its widget. The widget is the binding's parent. While it
// ends it is no widget any more, so nothing of it is touched once the binding ends; Inner keeps no
// other pointer to it.

#include "DataBindingQt6/widgets/Binding.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/framework/EditSession.h"
#include "DataBinding/framework/OneWay.h"
#include "DataBindingQt6/loop/QtIdlePass.h"
#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/values/details/Guard.h"
#include "DataBindingQt6/widgets/Bind.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Dress.h"
#include "Leaving.h"
#include "WidgetBind.h"

namespace DataBinding::Qt6 {

using details::Guard;

struct Binding::Inner {
  Inner(QObject& itsWidget, const details::WidgetOps& itsOps, const VtrString& source,
        const VtrString& property, const BindOptions& given)
      : widget(itsWidget),
        ops(itsOps),
        options(given),
        reasonIn(given.reasonIn),
        bind(itsOps, given.context, source, property) {
    const auto parts = ops.widgets(widget);
    dresses.reserve(static_cast<std::size_t>(parts.size()));
    for (QWidget* part : parts) dresses.emplace_back(part);
  }

  /// A form that the widget can show only roughly is read as the value itself as long as the user
  /// has not changed it.
  Value Read() const {
    Value held = ops.read(widget, bind.Kind());
    if (!written || held != heldAsWritten) return held;
    const auto present = bind.Get();
    return present && *present == *written ? *written : held;
  }
  void Write(const Value& value) {
    if (!ops.isWhole(widget)) return;
    if (keepsText) {
      isBehind = true;
      return;
    }
    written = value;
    const bool isHere = WriteAsProgram([&] { ops.write(widget, value); });
    if (isHere && ops.read != nullptr) heldAsWritten = ops.read(widget, bind.Kind());
  }
  void Clear() {
    if (ops.clear == nullptr || !ops.isWhole(widget)) return;
    WriteAsProgram([&] { ops.clear(widget); });
  }
  /// Runs a step whose changes of the widget are no edits. False where that has ended this, since a
  /// slot of the widget may do anything.
  template <class Step>
  bool WriteAsProgram(Step step) {
    const auto flag = isWriting;
    const ScopedValue writing(*flag, true);
    step();
    return flag.use_count() > 1;
  }

  /// Says whether the user may edit the widget now. Qt tells a widget that it loses the focus even
  /// in the destructor of QWidget.
  [[nodiscard]] bool HearsEdits() const { return session && !*isWriting && ops.isWhole(widget); }
  /// Disabling a part moves the focus, and a slot of that may end the widget with all of this.
  void Allow(Dress::Use use) {
    const QPointer<QObject> alive(&widget);
    for (std::size_t i = 0; alive && i < dresses.size(); ++i) dresses[i].Allow(use);
  }
  /// The label may show the reason of another widget.
  void ShowReason(EditState state, const QString& reason) {
    for (Dress& dress : dresses) dress.ShowReason(state, reason);
    const QString former = std::exchange(shownReason, reason);
    QLabel* const label = reasonIn;
    if (label == nullptr || former == reason) return;
    if (!reason.isEmpty() || label->text() == Dress::AsPlain(former)) {
      label->setText(Dress::AsPlain(reason.isEmpty() ? OtherReasonIn(*label) : reason));
    }
  }
  /// Returns the reason of another widget that shows it in the same label, or nothing.
  static QString OtherReasonIn(const QLabel& label) {
    for (const Binding* other : Bindings::All()) {
      const Inner& shows = *other->inner;
      if (shows.reasonIn == &label && !shows.shownReason.isEmpty()) return shows.shownReason;
    }
    return {};
  }

  QObject& widget;
  const details::WidgetOps& ops;
  BindOptions options;
  QPointer<QLabel> reasonIn;
  std::vector<Dress> dresses;
  WidgetBind bind;
  std::optional<Value> written;
  Value heldAsWritten;
  std::optional<EditSession> session;
  Subscription changes;
  std::unique_ptr<OneWayJoin> shown;
  QTimer* timer = nullptr;
  QString shownReason;
  std::shared_ptr<bool> isWriting = std::make_shared<bool>(false);
  bool goesOn = false;     // the last edit was typed, and not chosen
  bool keepsText = false;  // what is filed now stays as it is typed
  bool isBehind = false;   // the widget does not show what has become of that text
  bool showsAgain = false;
  bool isHeld = false;           // a mouse button is held on the widget
  bool waitsForRelease = false;  // something was chosen meanwhile
};

Binding::Binding(QObject& widget, const details::WidgetOps& ops, const VtrString& source,
                 const VtrString& property, const BindOptions& options)
    : QObject(&widget), inner(std::make_unique<Inner>(widget, ops, source, property, options)) {
  QWidget* const shown = Widget();
  FollowScope(shown == nullptr ? &widget : shown,
              [self = QPointer<Binding>(this)](IDataSourceProvider* provider) {
                if (self) self->inner->bind.Connect(provider);
              });
  if (ops.connect != nullptr) {
    inner->session.emplace(
        inner->bind, [this] { return inner->Read(); },
        [this](const Value& value) { inner->Write(value); });
    inner->session->WhenAbsent([this] {
      if (!HasTyped()) inner->Clear();
    });
    inner->changes = inner->session->OnState([this](const EditState&) { ShowState(); });
    ops.connect(widget, *this);
    for (const Dress& dress : inner->dresses) dress.Widget()->installEventFilter(this);
  } else {
    Follow();
  }
  Bindings::Add(*this);  // last, because what was thrown above would leave it there
  ShowState();
}

Binding::~Binding() { Bindings::Remove(*this); }

/// A widget that only shows is written once a pass, however often its value changes.
void Binding::Follow() {
  const auto write = [this](const Value& value) { inner->Write(value); };
  const auto clear = [this] { inner->Clear(); };
  if (const QtIdlePass* pass = QtIdlePass::Current()) {
    inner->shown = std::make_unique<OneWayJoin>(OneWay(inner->bind, pass->Pass(), write, clear));
    return;
  }
  const auto show = [this, write, clear] {
    const auto present = inner->bind.Get();
    present ? write(*present) : clear();
  };
  inner->changes = inner->bind.SubscribeToChanges(show);
  show();
}

Binding* Binding::Of(const QObject* widget) {
  if (widget == nullptr) return nullptr;
  return widget->findChild<Binding*>(QString(), Qt::FindDirectChildrenOnly);
}

/// It is never given back, as nobody knows who still refers to it.
Binding& Binding::None() {
  static constexpr details::WidgetOps nothing{.fits = [](ValueKind) { return false; },
                                              .asText = false,
                                              .takesEnter = false,
                                              .isWhole = [](const QObject&) { return false; },
                                              .widgets = [](QObject&) { return QWidgetList(); },
                                              .read = nullptr,
                                              .write = nullptr,
                                              .clear = nullptr,
                                              .connect = nullptr};
  static auto& none = *new Binding(*new QObject, nothing, {}, {}, {});
  return none;
}

Binding& details::MakeBinding(QObject* widget, const WidgetOps& ops, const VtrString& source,
                              const VtrString& property, const BindOptions& options) {
  if (widget == nullptr) return Binding::None();
  if (Binding* const former = Binding::Of(widget)) former->Leave();
  return *new Binding(*widget, ops, source, property, options);  // it belongs to the widget
}

void Binding::Leave() {
  const QPointer<Binding> alive(this);
  inner->ShowReason(EditState::Clean, {});
  inner->Allow(Dress::Use::Edit);
  if (alive) delete this;
}

const EditSession* Binding::Session() const { return inner->session ? &*inner->session : nullptr; }

EditState Binding::State() const {
  if (inner->session) return inner->session->State();
  return inner->bind.HasValue() ? EditState::Clean : EditState::Absent;
}

VtrString Binding::Reason() const {
  return inner->session ? inner->session->Reason() : VtrString();
}

bool Binding::HasTyped() const { return inner->session && inner->session->HasTyped(); }

Framework::BindStatus Binding::Status() const { return inner->bind.Status(); }

QWidget* Binding::Widget() const {
  for (const Dress& dress : inner->dresses) {
    if (dress.Widget() != nullptr) return dress.Widget();
  }
  return nullptr;
}

SetResult Binding::Check() { return inner->session ? inner->session->Check() : SetResult(); }
SetResult Binding::Commit() { return inner->session ? inner->session->Commit() : SetResult(); }
SetResult Binding::Overwrite() {
  return inner->session ? inner->session->Overwrite() : SetResult();
}

void Binding::Revert() {
  if (!inner->session) return;
  const QPointer<Binding> alive(this);
  inner->session->Revert();
  if (!alive || State() != EditState::Absent) return;
  inner->Clear();
  if (alive) DisableAbsent();
  if (alive) WindowEdits::TellOf(*this);
}

void Binding::typed() {
  if (!inner->HearsEdits()) return;
  const QPointer<Binding> alive(this);
  inner->goesOn = true;
  Guard(inner->bind.Path(), [this] { inner->session->Typed(); });
  if (!alive) return;
  if (inner->options.commitOn == CommitOn::Typing) CommitTyped();
  if (alive && inner->options.commitOn == CommitOn::Delay) CommitLater();
}

void Binding::chosen() {
  if (!inner->HearsEdits()) return;
  const QPointer<Binding> alive(this);
  typed();
  if (!alive) return;
  inner->goesOn = false;
  if (inner->options.commitOn == CommitOn::Delay) return;
  inner->waitsForRelease = inner->isHeld && inner->options.commitOn == CommitOn::Release;
  if (!inner->waitsForRelease) finished();
}

void Binding::finished() {
  if (!inner->HearsEdits()) return;
  const QPointer<Binding> alive(this);
  if (inner->timer != nullptr) inner->timer->stop();
  Guard(inner->bind.Path(), [this] { inner->session->Commit(); });
  if (alive && std::exchange(inner->isBehind, false)) ShowAgainNow();
}

/// Files what is typed and leaves the widget alone where the user goes on typing: "1." is a number
/// that would be shown as "1".
void Binding::CommitTyped() {
  if (!inner->HearsEdits()) return;
  const QPointer<Binding> alive(this);
  inner->keepsText = inner->goesOn;
  Guard(inner->bind.Path(), [this] { inner->session->Commit(); });
  if (alive) inner->keepsText = false;
}

void Binding::showAgain() {
  if (std::exchange(inner->showsAgain, true)) return;
  QMetaObject::invokeMethod(this, &Binding::ShowAgainNow, Qt::QueuedConnection);
}

void Binding::ShowAgainNow() {
  inner->showsAgain = false;
  if (HasTyped()) return;
  Guard(inner->bind.Path(), [this] {
    if (inner->session) return inner->session->Revert();
    if (const auto present = inner->bind.Get()) inner->Write(*present);
  });
}

void Binding::CommitLater() {
  if (inner->timer == nullptr) {
    inner->timer = new QTimer(this);
    inner->timer->setSingleShot(true);
    connect(inner->timer, &QTimer::timeout, this, &Binding::CommitTyped);
  }
  inner->timer->start(inner->options.delay);
}

bool Binding::eventFilter(QObject* /*watched*/, QEvent* event) {
  if (!inner->HearsEdits()) return false;
  const QPointer<Binding> alive(this);
  switch (event->type()) {
    case QEvent::FocusOut:
      inner->isHeld = false;  // a popup has taken the mouse
      if (LeavesWidget(*event)) finished();
      break;
    case QEvent::MouseButtonPress:
      inner->isHeld = static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
      break;
    case QEvent::MouseButtonRelease:
      inner->isHeld = false;
      if (std::exchange(inner->waitsForRelease, false)) finished();
      break;
    case QEvent::ShortcutOverride:
      // Escape is for this widget, and not for an action that has it as its shortcut.
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && HasTyped()) event->accept();
      break;
    case QEvent::KeyPress:
      return PressesKey(static_cast<QKeyEvent*>(event)->key());
    default:
      break;
  }
  return !alive;
}

/// Returns true where the key goes no further: an Escape that reverts, and an Enter that is
/// refused, so that it does not close a dialogue.
bool Binding::PressesKey(int key) {
  const QPointer<Binding> alive(this);
  if (key == Qt::Key_Escape && HasTyped()) {
    Guard(inner->bind.Path(), [this] { Revert(); });
    return true;
  }
  if ((key == Qt::Key_Return || key == Qt::Key_Enter) && !inner->ops.takesEnter) {
    finished();
    return !alive || !Reason().IsEmpty();
  }
  return !alive;
}

/// Each step may end the widget: a widget that is disabled loses the focus, and slots hear of that.
void Binding::ShowState() {
  if (!inner->session) return;
  const QPointer<Binding> alive(this);
  const EditState state = State();
  if (state == EditState::Absent) {
    // Another source may come at once, and then the focus is to stay.
    QMetaObject::invokeMethod(this, &Binding::DisableAbsent, Qt::QueuedConnection);
  } else {
    inner->Allow(state == EditState::ReadOnly ? Dress::Use::Read : Dress::Use::Edit);
  }
  if (alive) inner->ShowReason(state, ToQString(Reason()));
  if (alive) WindowEdits::TellOf(*this);
  if (alive) Q_EMIT stateChanged(state);
}

/// A widget in which something is typed stays enabled, since Escape is to revert it.
void Binding::DisableAbsent() {
  if (State() == EditState::Absent && !HasTyped()) inner->Allow(Dress::Use::Nothing);
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/loop/QtIdlePass.h"

#include <QMetaMethod>
#include <QPointer>
#include <algorithm>
#include <exception>
#include <vector>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBindingQt6/values/Text.h"
#include "LogCategory.h"

namespace DataBinding::Qt6 {

namespace {

/// The passes in the order in which they were made, for the delivering thread.
std::vector<QtIdlePass*>& Passes() {
  static std::vector<QtIdlePass*> passes;
  return passes;
}

std::chrono::milliseconds AtLeastOne(std::chrono::milliseconds length) {
  return std::max(length, std::chrono::milliseconds(1));
}

}  // namespace

// A thread wakes the loop by a queued call, since only the loop's own thread may start a timer.
QtIdlePass::QtIdlePass(std::chrono::milliseconds length, QObject* parent)
    : QObject(parent), frame(AtLeastOne(length)), pass([this] {
        QMetaObject::invokeMethod(
            this, [this] { Await(); }, Qt::QueuedConnection);
      }) {
  timer.setSingleShot(true);
  timer.setTimerType(Qt::PreciseTimer);
  connect(&timer, &QTimer::timeout, this, &QtIdlePass::Deliver);
  Passes().push_back(this);
}

QtIdlePass::~QtIdlePass() { std::erase(Passes(), this); }

QtIdlePass* QtIdlePass::Current() { return Passes().empty() ? nullptr : Passes().back(); }

void QtIdlePass::SetFrame(std::chrono::milliseconds length) {
  frame = AtLeastOne(length);
  if (timer.isActive()) timer.start(AtLeastOne(UntilDue()));
}

// A timer without any time to wait would come after all other work, and so perhaps never.
void QtIdlePass::Await() {
  const auto wait = UntilDue();
  if (wait.count() > 0) return timer.start(wait);
  Deliver();
}

// A pass leaves the other half of a frame to the rest of the program, however late it comes itself.
std::chrono::milliseconds QtIdlePass::UntilDue() const {
  const auto due = std::max(begun + frame, over + Budget());
  return std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now());
}

void QtIdlePass::Deliver() {
  const QPointer<QtIdlePass> alive(this);
  timer.stop();
  begun = Clock::now();
  try {
    pass.RunFor(Budget());
  } catch (...) {
    Tell(alive, ToQString(ExceptionText(std::current_exception())));
  }
  if (!alive) return;
  over = Clock::now();
  Q_EMIT delivered();
}

void QtIdlePass::Tell(QtIdlePass* to, const QString& reason) {
  if (to == nullptr || !to->isSignalConnected(QMetaMethod::fromSignal(&QtIdlePass::failed))) {
    qCWarning(LogCategory).noquote() << "A listener to an event has thrown:" << reason;
    return;
  }
  const auto others = to->pass.DroppedFailures();
  Q_EMIT to->failed(others == 0 ? reason
                                : QStringLiteral("%1 (and %2 more)").arg(reason).arg(others));
}

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// Qt's posted events and queued connections in the place of the library's queue.
#pragma once

#include <QEvent>
#include <QObject>

#include "EventPeers.h"
#include "QtSignals.h"

namespace Benchmarks {

class QtReadingEvent : public QEvent {
 public:
  static inline const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
  explicit QtReadingEvent(const Reading& carried) : QEvent(type), reading(carried) {}

  Reading reading;
};

/// Adds up the numbers that are posted to it.
class QtReceiver : public QObject {
 public:
  explicit QtReceiver(Sum& target) : sum(target) {}
  bool event(QEvent* received) override {
    if (received->type() != QtReadingEvent::type) return QObject::event(received);
    sum.Add(static_cast<QtReadingEvent*>(received)->reading);
    return true;
  }

 private:
  Sum& sum;
};

/// A sender with a signal that carries a reading. It is raised directly, or when a posted event
/// comes.
class QtSender : public QObject {
  Q_OBJECT

 public:
  bool event(QEvent* received) override {
    if (received->type() != QtReadingEvent::type) return QObject::event(received);
    Q_EMIT Raised(static_cast<QtReadingEvent*>(received)->reading);
    return true;
  }

 Q_SIGNALS:
  void Raised(const Benchmarks::Reading& reading);
};

}  // namespace Benchmarks

Q_DECLARE_METATYPE(Benchmarks::Reading)

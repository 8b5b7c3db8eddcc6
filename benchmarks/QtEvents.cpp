// SPDX-License-Identifier: Apache-2.0
#include "QtEvents.h"

#include <memory>
#include <vector>

#include "EventWorkloads.h"

namespace Benchmarks {

namespace {

/// Posts one Qt event for each event that is raised, and has one receiver for each name.
class QtPosted {
 public:
  explicit QtPosted(const Texts& names) : receivers(names.size()) {
    static_cast<void>(QtApplication());
  }
  void Subscribe(std::size_t name) { receivers[name] = std::make_unique<QtReceiver>(sum); }
  void Raise(std::size_t name, const Reading& reading) {
    QCoreApplication::postEvent(receivers[name].get(), new QtReadingEvent(reading));
  }
  void RaiseLatest(std::size_t name, const Reading& reading) {
    QCoreApplication::removePostedEvents(receivers[name].get(), QtReadingEvent::type);
    Raise(name, reading);
  }
  void Dispatch() { QCoreApplication::sendPostedEvents(); }

  Sum sum;

 private:
  std::vector<std::unique_ptr<QtReceiver>> receivers;
};

/// Keeps a sender for each name, and connects the listeners to it.
template <Qt::ConnectionType Connection>
class QtSenders {
 public:
  explicit QtSenders(const Texts& names) : senders(std::make_unique<QtSender[]>(names.size())) {
    static_cast<void>(QtApplication());
  }
  void Subscribe(std::size_t name) {
    const auto add = [this](const Reading& reading) { sum.Add(reading); };
    QObject::connect(&senders[name], &QtSender::Raised, &context, add, Connection);
  }
  void Dispatch() { QCoreApplication::sendPostedEvents(); }

  Sum sum;

 protected:
  std::unique_ptr<QtSender[]> senders;
  QObject context;
};

/// A posted event whose receiver raises a signal.
class QtPostedSignal : public QtSenders<Qt::DirectConnection> {
 public:
  using QtSenders::QtSenders;
  void Raise(std::size_t name, const Reading& reading) {
    QCoreApplication::postEvent(&senders[name], new QtReadingEvent(reading));
  }
};

/// A signal over queued connections: one posted event for each listener.
class QtQueued : public QtSenders<Qt::QueuedConnection> {
 public:
  using QtSenders::QtSenders;
  void Raise(std::size_t name, const Reading& reading) { Q_EMIT senders[name].Raised(reading); }
};

[[maybe_unused]] const bool qtEventsMeasured = [] {
  EnterQueue<QtPosted>("qt");
  EnterDelivery<QtPostedSignal>("qt");
  return MeasureEvents<QtQueued>("qtqueued");
}();

}  // namespace

}  // namespace Benchmarks

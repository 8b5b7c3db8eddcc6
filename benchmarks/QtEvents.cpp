// Qt's posted events in the place of the library's queue.

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <memory>
#include <vector>

#include "EventPeers.h"

namespace Benchmarks {

namespace {

class ReadingEvent : public QEvent {
 public:
  static inline const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
  explicit ReadingEvent(const Reading& carried) : QEvent(type), reading(carried) {}

  Reading reading;
};

class Receiver : public QObject {
 public:
  explicit Receiver(Sum& target) : sum(target) {}
  bool event(QEvent* received) override {
    if (received->type() != ReadingEvent::type) return QObject::event(received);
    sum.Add(static_cast<ReadingEvent*>(received)->reading);
    return true;
  }

 private:
  Sum& sum;
};

class QtEvents {
 public:
  explicit QtEvents(const Texts& names) : receivers(names.size()) {}
  void Subscribe(std::size_t name) { receivers[name] = std::make_unique<Receiver>(sum); }
  void Raise(std::size_t name, const Reading& reading) {
    QCoreApplication::postEvent(receivers[name].get(), new ReadingEvent(reading));
  }
  void Dispatch() { QCoreApplication::sendPostedEvents(); }

  Sum sum;

 private:
  static QCoreApplication& Application() {
    static int count = 1;
    static char name[] = "benchmarks";
    static char* arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
    return application;
  }

  QCoreApplication& application = Application();
  std::vector<std::unique_ptr<Receiver>> receivers;
};

BENCHMARK(RaiseAndDispatch<QtEvents>)->Name("queue/qt")->Arg(100);

}  // namespace

}  // namespace Benchmarks

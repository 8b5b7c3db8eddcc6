// SPDX-License-Identifier: Apache-2.0
/// QtIdlePass delivers application events in Qt's loop, one pass a frame.
///
/// Make it after the QApplication, on its thread, before any thread starts to raise events, and end
/// it after all have stopped. Threads that raise events wake it, once a pass. The first event after
/// a pause is delivered at once. While events keep coming a pass runs once a frame, takes half of
/// it at most, and leaves the rest of the events to the next one; so the window goes on answering,
/// however many come. Only one long call of a listener can still hold it up.
///
/// Loops within loops, as of a modal dialogue, deliver too. Nothing is thrown into Qt. A listener
/// may end the pass.
///
///   QApplication application(argc, argv);
///   Qt6::Install();
///   Qt6::QtIdlePass pass;
#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>

#include "DataBinding/appevents/IdlePass.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

class DATABINDING_QT6_API QtIdlePass : public QObject {
  Q_OBJECT

 public:
  /// The length of a frame where nothing else is asked for: a display shows 60 of them a second.
  static constexpr std::chrono::milliseconds usualFrame{16};

  /// Less than a millisecond counts as one.
  explicit QtIdlePass(std::chrono::milliseconds length = usualFrame, QObject* parent = nullptr);
  QtIdlePass(const QtIdlePass&) = delete;
  QtIdlePass& operator=(const QtIdlePass&) = delete;
  ~QtIdlePass() override;

  /// Returns the pass that was made last and has not ended, or null. For the pass's own thread.
  [[nodiscard]] static QtIdlePass* Current();

  /// Returns how often a pass runs at most.
  [[nodiscard]] std::chrono::milliseconds Frame() const { return frame; }
  /// Sets how often a pass runs, also for one that waits already.
  void SetFrame(std::chrono::milliseconds length);
  /// Returns the pass itself, to join OneWay to it. It is not to be run by others than this object.
  [[nodiscard]] const IdlePass& Pass() const { return pass; }

 Q_SIGNALS:
  /// A pass is over: the events are delivered, and what shows values by OneWay has written them.
  void delivered();
  /// A listener, or what is joined to the pass, has thrown. Where nothing is connected to this, the
  /// text goes to Qt's log.
  void failed(const QString& reason);

 private:
  using Clock = std::chrono::steady_clock;

  void Await();
  void Deliver();
  [[nodiscard]] std::chrono::milliseconds UntilDue() const;
  [[nodiscard]] std::chrono::microseconds Budget() const {
    return std::chrono::microseconds(frame) / 2;
  }
  static void Tell(QtIdlePass* to, const QString& reason);

  std::chrono::milliseconds frame;
  Clock::time_point begun;
  Clock::time_point over;
  QTimer timer;
  IdlePass pass;  // the last member, because it may wake the loop while it is made
};

}  // namespace DataBinding::Qt6

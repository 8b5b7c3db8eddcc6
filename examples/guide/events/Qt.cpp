// SPDX-License-Identifier: Apache-2.0
// The idle pass in Qt's loop, which has a picture to draw all the time.
#include <QCoreApplication>
#include <QObject>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <exception>
#include <iostream>
#include <thread>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;
using namespace std::chrono_literals;

inline constinit const AppEvent<int> sampleTaken{L"SampleTaken"};

class QtPass : public QObject {
 private:
  void RunPass() {
    try {
      pass.Run();
    } catch (const std::exception& failure) {
      std::cerr << failure.what() << '\n';  // Qt lets no exception through
    }
  }
  void RunNextFrame() {
    QTimer::singleShot(16ms, this, [this] { RunPass(); });
  }

  IdlePass pass{[this] {
    QMetaObject::invokeMethod(
        this, [this] { RunNextFrame(); }, Qt::QueuedConnection);
  }};
};

namespace {

constexpr int samples = 40'000;
std::atomic<bool> allTaken = false;

void TakeSamples() {
  for (int i = 0; i < samples; ++i) sampleTaken.Raise(i);
  allTaken = true;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QtPass pass;
  int heard = 0;
  const Subscription counter = sampleTaken.Subscribe([&](int) { ++heard; });

  int frames = 0;
  QTimer drawing;  // stands for a window's drawing: there is always more to draw, and it is slow
  QObject::connect(&drawing, &QTimer::timeout, [&] {
    std::this_thread::sleep_for(20ms);
    if (allTaken) ++frames;
  });
  drawing.start(0);

  std::thread sampler(&TakeSamples);
  while (heard < samples && frames < 100) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  sampler.join();

  std::cout << heard << " of " << samples << " events arrived\n";
  return heard == samples ? 0 : 1;
}

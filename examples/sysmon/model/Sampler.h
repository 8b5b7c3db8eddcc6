// SPDX-License-Identifier: Apache-2.0
/// The thread that reads the system at each tick and has an announcer raise events of the readings.
///
/// It begins at once, and ends before the loop that delivers the events.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "Announcer.h"

namespace Sysmon {

class Sampler {
 public:
  Sampler(SystemReader& systemReader, std::chrono::milliseconds sampleInterval);
  Sampler(const Sampler&) = delete;
  Sampler& operator=(const Sampler&) = delete;
  /// Returns when the thread has ended.
  ~Sampler();

 private:
  void Run();
  void SampleUntilTheEnd();

  SystemReader& reader;
  std::chrono::milliseconds interval;
  Announcer announcer;
  std::mutex mutex;
  std::condition_variable end;
  bool isEnding = false;
  std::jthread thread;  // the last member: it uses the others, so it starts after them
};

}  // namespace Sysmon

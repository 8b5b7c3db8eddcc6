/// The thread that reads the system at each tick and has an announcer raise what it finds.
///
/// It begins at once. Whoever delivers the events outlives it.
#pragma once

#include <chrono>
#include <stop_token>
#include <thread>

#include "Announcer.h"

namespace Sysmon {

class Sampler {
 public:
  Sampler(SystemReader& systemReader, std::chrono::milliseconds sampleInterval);
  Sampler(const Sampler&) = delete;
  Sampler& operator=(const Sampler&) = delete;
  /// Returns when the thread has ended.
  ~Sampler() = default;

 private:
  void Run(const std::stop_token& stop);
  void SampleUntil(const std::stop_token& stop);

  SystemReader& reader;
  std::chrono::milliseconds interval;
  Announcer announcer;
  std::jthread thread;  // starts after, and ends before, what it uses
};

}  // namespace Sysmon

#include "Sampler.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>

namespace Sysmon {

Sampler::Sampler(SystemReader& systemReader, std::chrono::milliseconds sampleInterval)
    : reader(systemReader),
      interval(sampleInterval),
      thread([this](const std::stop_token& stop) { Run(stop); }) {}

void Sampler::Run(const std::stop_token& stop) {
  try {
    SampleUntil(stop);
  } catch (const std::exception& error) {
    samplingFailed.Raise(VtrString::FromUtf8(error.what()));
  }
}

void Sampler::SampleUntil(const std::stop_token& stop) {
  using Clock = std::chrono::steady_clock;
  std::mutex mutex;
  std::condition_variable_any wakeUp;
  std::unique_lock lock(mutex);
  for (auto tick = Clock::now(); !stop.stop_requested();) {
    announcer.Announce(reader.Read());
    tick = std::max(tick + interval, Clock::now());  // late ticks are not made up for
    wakeUp.wait_until(lock, stop, tick, [] { return false; });
  }
}

}  // namespace Sysmon

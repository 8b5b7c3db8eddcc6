// SPDX-License-Identifier: Apache-2.0
#include "Sampler.h"

#include <algorithm>
#include <exception>

namespace Sysmon {

Sampler::Sampler(SystemReader& systemReader, std::chrono::milliseconds sampleInterval)
    : reader(systemReader), interval(sampleInterval), thread([this] { Run(); }) {}

Sampler::~Sampler() {
  const std::lock_guard lock(mutex);
  isEnding = true;
  end.notify_all();
}

void Sampler::Run() {
  try {
    SampleUntilTheEnd();
  } catch (const std::exception& error) {
    samplingFailed.Raise(VtrString::FromUtf8(error.what()));
  }
}

void Sampler::SampleUntilTheEnd() {
  using Clock = std::chrono::steady_clock;
  std::unique_lock lock(mutex);
  for (auto tick = Clock::now(); !isEnding;) {
    announcer.Announce(reader.Read());
    tick = std::max(tick + interval, Clock::now());  // ticks that were missed are left out
    end.wait_until(lock, tick, [this] { return isEnding; });
  }
}

}  // namespace Sysmon

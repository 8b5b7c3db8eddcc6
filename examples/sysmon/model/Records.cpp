#include "Records.h"

#include <algorithm>

namespace Sysmon {

namespace {

/// What a counter grew by, per second. A counter that went back was reset: nothing is known then.
double Rate(double before, double now, Seconds span) {
  return span > Seconds(0) ? std::max(0.0, now - before) / span.count() : 0;
}

BytesPerSecond Rate(Count before, Count now, Seconds span) {
  return {Rate(static_cast<double>(before), static_cast<double>(now), span)};
}

}  // namespace

void SystemRecord::Advance() {
  const auto before = now.taken;
  const bool isFirst = before == std::chrono::steady_clock::time_point();
  cpuBefore = now.cpu;
  now = reader.Read();
  elapsed = isFirst ? Seconds(0) : now.taken - before;
}

Share SystemRecord::CpuShare(Seconds CpuReading::*kind) const {
  const Seconds span = now.cpu.Total() - cpuBefore.Total();
  return {std::min(1.0, Rate((cpuBefore.*kind).count(), (now.cpu.*kind).count(), span))};
}

void ProcessRecord::Advance(const ProcessReading& reading) {
  const Seconds span = isKnown ? system.Elapsed() : system.Now().host.uptime - reading.started;
  cpuShare = {Rate(now.cpuTime.count(), reading.cpuTime.count(), span)};
  now = reading;
  isKnown = true;
}

void InterfaceRecord::Advance(const InterfaceReading& reading) {
  const Seconds span = isKnown ? system.Elapsed() : Seconds(0);
  receivedRate = Rate(now.receivedBytes, reading.receivedBytes, span);
  sentRate = Rate(now.sentBytes, reading.sentBytes, span);
  now = reading;
  isKnown = true;
}

}  // namespace Sysmon

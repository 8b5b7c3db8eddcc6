// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/LogMessage.h"

#include <atomic>

namespace VtrUtils {

namespace {
constinit std::atomic<LogMessage::Sink> currentSink{nullptr};
}  // namespace

LogMessage::~LogMessage() {
  const Sink sink = currentSink.load(std::memory_order_acquire);
  if (sink == nullptr) return;
  try {
    sink(VtrPlatform::VtrString(text.view()));
  } catch (...) {  // a diagnostic must not end the process
  }
}

LogMessage::Sink LogMessage::SetSink(Sink sink) noexcept {
  return currentSink.exchange(sink, std::memory_order_acq_rel);
}

}  // namespace VtrUtils

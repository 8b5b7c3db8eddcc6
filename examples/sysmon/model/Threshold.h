// SPDX-License-Identifier: Apache-2.0
/// Tells when a measured value reaches a limit and when it is below the limit again, whether the
/// value or the limit has moved.
#pragma once

#include <optional>

namespace Sysmon {

enum class Crossing { None, Raised, Cleared };

class Threshold {
 public:
  Crossing SetLimit(double newLimit) {
    limit = newLimit;
    return Compare();
  }
  Crossing Measure(double newValue) {
    value = newValue;
    return Compare();
  }

  [[nodiscard]] double Limit() const { return limit.value_or(0); }
  [[nodiscard]] double Value() const { return value.value_or(0); }

 private:
  /// False until both the value and the limit are known.
  Crossing Compare() {
    const bool wasReached = isReached;
    isReached = limit && value && *value >= *limit;
    if (isReached == wasReached) return Crossing::None;
    return isReached ? Crossing::Raised : Crossing::Cleared;
  }

  std::optional<double> limit;
  std::optional<double> value;
  bool isReached = false;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "Quantities.h"

#include <algorithm>
#include <array>

namespace Sysmon {

namespace {

VtrString ShowSize(double size, const wchar_t* suffix) {
  static constexpr std::array units = {L"B", L"KiB", L"MiB", L"GiB", L"TiB", L"PiB", L"EiB"};
  std::size_t unit = 0;
  for (; size >= 1023.95 && unit + 1 < units.size(); ++unit) size /= 1024;
  return VtrString().Format(unit == 0 ? L"%.0f %s%s" : L"%.1f %s%s", size, units[unit], suffix);
}

/// The longest duration that is shown, in seconds. A longer one would not fit into the integer
/// below.
constexpr double longestTime = 1e15;

}  // namespace

VtrString Show(Bytes bytes) { return ShowSize(static_cast<double>(bytes.value), L""); }

VtrString Show(BytesPerSecond speed) { return ShowSize(speed.value, L"/s"); }
VtrString Show(Share share) { return VtrString().Format(L"%.1f%%", share.value * 100); }

VtrString Show(Seconds time) {
  const auto total = static_cast<long long>(std::clamp(time.count(), 0.0, longestTime));
  const long long days = total / 86400, hours = total / 3600 % 24, minutes = total / 60 % 60;
  if (days > 0) return VtrString().Format(L"%dd %02d:%02d", days, hours, minutes);
  return VtrString().Format(L"%d:%02d:%02d", hours, minutes, total % 60);
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <variant>

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

struct Writer {
  VtrString operator()(const VtrString& text) const { return text; }
  VtrString operator()(Count count) const { return VtrString().Format(L"%u", count); }
  VtrString operator()(bool isSo) const { return isSo ? L"yes" : L"no"; }
  VtrString operator()(double number) const { return VtrString().Format(L"%.2f", number); }
  VtrString operator()(Bytes bytes) const {
    return ShowSize(static_cast<double>(bytes.value), L"");
  }
  VtrString operator()(BytesPerSecond speed) const { return ShowSize(speed.value, L"/s"); }
  VtrString operator()(Share share) const {
    return VtrString().Format(L"%.1f%%", share.value * 100);
  }
  VtrString operator()(Seconds time) const {
    const auto total = static_cast<long long>(std::clamp(time.count(), 0.0, longestTime));
    const long long days = total / 86400, hours = total / 3600 % 24, minutes = total / 60 % 60;
    if (days > 0) return VtrString().Format(L"%dd %02d:%02d", days, hours, minutes);
    return VtrString().Format(L"%d:%02d:%02d", hours, minutes, total % 60);
  }
};

}  // namespace

VtrString Show(const Value& value) { return std::visit(Writer(), value); }

std::wstring Bar(const Value& share, int width) {
  const auto* const whole = std::get_if<Share>(&share);
  const double part = whole == nullptr ? 0 : std::clamp(whole->value, 0.0, 1.0);
  const auto length = static_cast<std::size_t>(std::max(0, width - 2));
  const auto filled = static_cast<std::size_t>(std::lround(part * static_cast<double>(length)));
  return L'[' + std::wstring(filled, L'#') + std::wstring(length - filled, L'.') + L']';
}

std::wstring Fit(std::wstring_view text, int width, Align align) {
  std::wstring fitted;
  int used = 0;
  for (wchar_t character : text) {
    int cells = CellsOf(character);
    if (cells < 0) {
      character = L'?';
      cells = 1;
    }
    if (used + cells > width) break;
    if (cells > 0) fitted += character;
    used += cells;
  }
  const auto padding = static_cast<std::size_t>(std::max(0, width - used));
  fitted.insert(align == Align::Left ? fitted.size() : 0, padding, L' ');
  return fitted;
}

}  // namespace Sysmon

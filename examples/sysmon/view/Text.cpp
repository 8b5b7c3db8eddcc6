// SPDX-License-Identifier: Apache-2.0
#include "Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <variant>

namespace Sysmon {

namespace {

struct Writer {
  VtrString operator()(const VtrString& text) const { return text; }
  VtrString operator()(Count count) const { return VtrString().Format(L"%u", count); }
  VtrString operator()(bool isSo) const { return isSo ? L"yes" : L"no"; }
  VtrString operator()(double number) const { return VtrString().Format(L"%.2f", number); }
  template <class Quantity>
  VtrString operator()(const Quantity& quantity) const {
    return Show(quantity);
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

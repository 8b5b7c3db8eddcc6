// SPDX-License-Identifier: Apache-2.0
#include "Surface.h"

#include <algorithm>

namespace Sysmon {

Place Area::At(int lineWithin, int columnWithin, int wantedWidth) const {
  if (lineWithin >= height) return {};
  return {line + lineWithin, column + columnWithin, std::min(wantedWidth, width - columnWithin)};
}

void Surface::Write(const Place& place, std::wstring_view text, Style style, Align align) {
  const Area whole = Whole();
  const Place visible{place.line, place.column, std::min(place.width, whole.width - place.column)};
  if (visible.width <= 0 || visible.line >= whole.height) return;
  Draw(visible, Fit(text, visible.width, align), style);
  cellsWritten += visible.width;
}

void Surface::Clear() {
  const Area whole = Whole();
  Blank();
  cellsWritten += std::int64_t{whole.width} * whole.height;
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// A surface on which views draw: lines of character cells, of a terminal or of a printed page.
///
/// Views write a text only when it has changed. The surface counts the written cells, so that one
/// can see that. A written text always fills its place: it is cut off or padded, and never wrapped.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "Text.h"

namespace Sysmon {

enum class Style { Plain, Label, Title, Chosen, Alarm };

struct Place {
  int line = 0;
  int column = 0;
  int width = 0;
};

struct Area {
  int line = 0;
  int column = 0;
  int height = 0;
  int width = 0;

  friend bool operator==(const Area&, const Area&) = default;

  /// A place in a line of the area. It ends at the area's right edge at the latest.
  [[nodiscard]] Place At(int lineWithin, int columnWithin, int wantedWidth) const;
};

class Surface {
 public:
  virtual ~Surface() = default;

  [[nodiscard]] virtual Area Whole() const = 0;
  /// Makes written cells appear.
  virtual void Show() = 0;

  void Write(const Place& place, std::wstring_view text, Style style = Style::Plain,
             Align align = Align::Left);
  void Clear();
  /// How many cells were written since the last call.
  [[nodiscard]] std::int64_t TakeCellsWritten() { return std::exchange(cellsWritten, 0); }

 protected:
  Surface() = default;
  Surface(const Surface&) = default;
  Surface& operator=(const Surface&) = default;

 private:
  /// The text takes as many cells as the place is wide.
  virtual void Draw(const Place& place, const std::wstring& text, Style style) = 0;
  virtual void Blank() = 0;

  std::int64_t cellsWritten = 0;
};

}  // namespace Sysmon

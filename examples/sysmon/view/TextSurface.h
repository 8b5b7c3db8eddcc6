// SPDX-License-Identifier: Apache-2.0
/// A page of text on standard output, printed whole each time it is shown: for pipes and files.
#pragma once

#include <string>
#include <vector>

#include "Surface.h"

namespace Sysmon {

class TextSurface final : public Surface {
 public:
  /// The page has as many lines as views have written to.
  [[nodiscard]] Area Whole() const override { return {0, 0, 1 << 20, 100}; }
  /// Prints the page. Throws std::runtime_error when that fails.
  void Show() override;

 private:
  void Draw(const Place& place, const std::wstring& text, Style style) override;
  void Blank() override { lines.clear(); }

  std::vector<std::wstring> lines;
  bool isFirst = true;
};

}  // namespace Sysmon

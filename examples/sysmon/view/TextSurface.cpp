// SPDX-License-Identifier: Apache-2.0
#include "TextSurface.h"

#include <iostream>
#include <stdexcept>
#include <utility>

namespace Sysmon {

namespace {

/// Marks the cells that a wide character takes behind its first one.
constexpr wchar_t filler = L'\0';

std::string Printed(std::wstring line) {
  std::erase(line, filler);
  line.erase(line.find_last_not_of(L' ') + 1);
  return VtrString(std::wstring_view(line)).ToUtf8();
}

}  // namespace

void TextSurface::Draw(const Place& place, const std::wstring& text, Style /*style*/) {
  const auto line = static_cast<std::size_t>(place.line);
  if (line >= lines.size()) lines.resize(line + 1);
  auto& cells = lines[line];
  auto cell = static_cast<std::size_t>(place.column);
  const auto end = cell + static_cast<std::size_t>(place.width);
  if (cells.size() < end) cells.resize(end, L' ');
  for (const wchar_t character : text) {
    cells[cell++] = character;
    if (CellsOf(character) == 2) cells[cell++] = filler;
  }
}

void TextSurface::Show() {
  while (!lines.empty() && Printed(lines.back()).empty()) lines.pop_back();
  if (!std::exchange(isFirst, false)) std::cout << '\n';
  for (const auto& line : lines) std::cout << Printed(line) << '\n';
  if (!std::cout.flush()) throw std::runtime_error("cannot write to standard output");
}

}  // namespace Sysmon

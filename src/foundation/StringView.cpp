// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/StringView.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "CaseFoldingTable.h"
#include "CodePoints.h"

namespace VtrPlatform::details {

namespace {

std::uint32_t Fold(std::uint32_t character) noexcept {
  if (character < 0x80) return character >= 'A' && character <= 'Z' ? character + 32 : character;
  const auto* row =
      std::ranges::lower_bound(caseFoldingTable, character, {}, &CaseFoldingRow::last);
  if (row == std::end(caseFoldingTable) || character < row->first) return character;
  if ((character - row->first) % static_cast<std::uint32_t>(row->step) != 0) return character;
  return character + static_cast<std::uint32_t>(row->delta);
}

}  // namespace

std::int32_t CheckedLength(std::size_t length) {
  if (length > INT32_MAX) throw std::length_error("string too long");
  return static_cast<std::int32_t>(length);
}

int CompareFolded(std::wstring_view left, std::wstring_view right) noexcept {
  std::size_t leftPosition = 0;
  std::size_t rightPosition = 0;
  while (leftPosition < left.size() && rightPosition < right.size()) {
    const auto a = Fold(NextCodePoint(left, leftPosition));
    const auto b = Fold(NextCodePoint(right, rightPosition));
    if (a != b) return a < b ? -1 : 1;
  }
  return static_cast<int>(leftPosition < left.size()) -
         static_cast<int>(rightPosition < right.size());
}

}  // namespace VtrPlatform::details

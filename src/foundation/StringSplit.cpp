// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/StringSplit.h"

#include <string_view>

namespace VtrUtils::String {

using VtrPlatform::VtrString;
using VtrPlatform::VtrStringView;

namespace {

std::wstring_view Trimmed(std::wstring_view piece) noexcept {
  while (!piece.empty() && IsBlank(piece.front())) piece.remove_prefix(1);
  while (!piece.empty() && IsBlank(piece.back())) piece.remove_suffix(1);
  return piece;
}

}  // namespace

std::vector<VtrStringView> SplitView(VtrStringView text, VtrStringView separator, bool keepEmpty,
                                     bool trimBlanks) {
  std::vector<VtrStringView> pieces;
  if (text.IsEmpty()) return pieces;
  std::wstring_view rest = text;
  for (bool more = true; more;) {
    const auto end = separator.IsEmpty() ? rest.npos : rest.find(std::wstring_view(separator));
    std::wstring_view piece = rest.substr(0, end);
    if (trimBlanks) piece = Trimmed(piece);
    if (keepEmpty || !piece.empty()) pieces.emplace_back(piece);
    more = end != rest.npos;
    if (more) rest.remove_prefix(end + static_cast<std::size_t>(separator.GetLength()));
  }
  return pieces;
}

std::vector<VtrString> Split(const wchar_t* text, wchar_t separator, bool keepEmpty,
                             bool trimBlanks) {
  const auto views = SplitView(text, VtrStringView(&separator, 1), keepEmpty, trimBlanks);
  std::vector<VtrString> pieces;
  pieces.reserve(views.size());
  for (const auto view : views) pieces.emplace_back(view);
  return pieces;
}

}  // namespace VtrUtils::String

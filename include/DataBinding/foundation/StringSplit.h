// SPDX-License-Identifier: Apache-2.0
/// Splits a list of names at a separator.
///
/// Blanks are U+0020 and U+0009 to U+000D. With blanks trimmed and empty pieces dropped, as name
/// lists are always split here, `L" A , ,B"` gives A and B, and `L","` gives nothing. A null text
/// is an empty list.
#pragma once

#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/StringView.h"

namespace VtrUtils::String {

/// The pieces of a text, in order, as strings of their own.
[[nodiscard]] DATABINDING_API std::vector<VtrPlatform::VtrString> Split(const wchar_t* text,
                                                                        wchar_t separator,
                                                                        bool keepEmpty,
                                                                        bool trimBlanks);

/// The pieces of a text, in order, as views into it. An empty separator does not split.
[[nodiscard]] DATABINDING_API std::vector<VtrPlatform::VtrStringView> SplitView(
    VtrPlatform::VtrStringView text, VtrPlatform::VtrStringView separator, bool keepEmpty,
    bool trimBlanks);

/// True for the characters that trimming takes away.
[[nodiscard]] constexpr bool IsBlank(wchar_t character) noexcept {
  return character == L' ' || (character >= L'\t' && character <= L'\r');
}

}  // namespace VtrUtils::String

namespace DataBinding {
namespace String = VtrUtils::String;
}  // namespace DataBinding

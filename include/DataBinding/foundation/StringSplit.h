// SPDX-License-Identifier: Apache-2.0
/// These functions split a text, such as a list of names, at a separator.
///
/// Blanks are U+0020 and U+0009 to U+000D. The library splits its lists of names with blanks
/// trimmed and empty pieces dropped: `L" A , ,B"` gives A and B, and `L","` gives nothing. A null
/// text is an empty list.
#pragma once

#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/StringView.h"

namespace VtrUtils::String {

/// Returns the pieces of a text in their order, as strings of their own.
[[nodiscard]] DATABINDING_API std::vector<VtrPlatform::VtrString> Split(const wchar_t* text,
                                                                        wchar_t separator,
                                                                        bool keepEmpty,
                                                                        bool trimBlanks);

/// Returns the pieces of a text in their order, as views into the text. An empty separator leaves
/// the text whole.
[[nodiscard]] DATABINDING_API std::vector<VtrPlatform::VtrStringView> SplitView(
    VtrPlatform::VtrStringView text, VtrPlatform::VtrStringView separator, bool keepEmpty,
    bool trimBlanks);

/// Returns true for the characters that are trimmed.
[[nodiscard]] constexpr bool IsBlank(wchar_t character) noexcept {
  return character == L' ' || (character >= L'\t' && character <= L'\r');
}

}  // namespace VtrUtils::String

namespace DataBinding {
namespace String = VtrUtils::String;
}  // namespace DataBinding

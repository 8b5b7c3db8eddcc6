// SPDX-License-Identifier: Apache-2.0
/// These functions read and write the characters of wide strings. The strings are UTF-16 where
/// wchar_t has 16 bits, and UTF-32 elsewhere.
///
/// A unit that is no Unicode character (a lone surrogate, a value past U+10FFFF) is read as U+FFFD.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace VtrPlatform::details {

inline constexpr std::uint32_t replacementCharacter = 0xFFFD;
inline constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;

[[nodiscard]] constexpr bool IsSurrogate(std::uint32_t unit) noexcept {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

/// Reads the character at a position and moves the position past it. The position must be less than
/// the text's length.
[[nodiscard]] constexpr std::uint32_t NextCodePoint(std::wstring_view text,
                                                    std::size_t& position) noexcept {
  const auto unit = static_cast<std::uint32_t>(text[position++]) & (wideIsUtf16 ? 0xFFFFu : ~0u);
  if (!IsSurrogate(unit)) return unit <= 0x10FFFF ? unit : replacementCharacter;
  if (!wideIsUtf16 || unit >= 0xDC00 || position == text.size()) return replacementCharacter;
  const auto low = static_cast<std::uint32_t>(text[position]) & 0xFFFFu;
  if (low < 0xDC00 || low > 0xDFFF) return replacementCharacter;
  ++position;
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

inline void AppendCodePoint(std::wstring& text, std::uint32_t character) {
  if (wideIsUtf16 && character > 0xFFFF) {
    text += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
    text += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
  } else {
    text += static_cast<wchar_t>(character);
  }
}

}  // namespace VtrPlatform::details

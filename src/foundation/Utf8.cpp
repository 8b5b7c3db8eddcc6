// SPDX-License-Identifier: Apache-2.0
// This file converts between wide strings and UTF-8. Each ill-formed sequence becomes U+FFFD.
#include <algorithm>
#include <string>

#include "CodePoints.h"
#include "DataBinding/foundation/String.h"

namespace VtrPlatform::details {

namespace {

/// A Lead holds what the first byte of a sequence tells: the number of bytes that follow, and the
/// range of the next one. The ranges exclude overlong forms, surrogates and values past U+10FFFF,
/// as in table 3-7 of the Unicode Standard.
struct Lead {
  int following;
  unsigned char lowest;
  unsigned char highest;
};

constexpr Lead Classify(unsigned char byte) noexcept {
  if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {0, 0, 0};
}

std::uint32_t NextUtf8(std::string_view text, std::size_t& position) noexcept {
  const auto first = static_cast<unsigned char>(text[position++]);
  if (first < 0x80) return first;
  Lead lead = Classify(first);
  if (lead.following == 0) return replacementCharacter;
  std::uint32_t character = first & (0x3Fu >> lead.following);
  for (; lead.following > 0; --lead.following) {
    if (position == text.size()) return replacementCharacter;
    const auto byte = static_cast<unsigned char>(text[position]);
    if (byte < lead.lowest || byte > lead.highest) return replacementCharacter;
    ++position;
    character = (character << 6) | (byte & 0x3Fu);
    lead.lowest = 0x80;
    lead.highest = 0xBF;
  }
  return character;
}

void AppendUtf8(std::string& text, std::uint32_t character) {
  const auto trail = [&](int shift) {
    text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    trail(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    trail(6);
    trail(0);
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    trail(12);
    trail(6);
    trail(0);
  }
}

}  // namespace

StringBuffer* BufferFromUtf8(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    AppendCodePoint(wide, NextUtf8(text, position));
  }
  return StringBuffer::Make(wide);
}

std::string ToUtf8(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    AppendUtf8(narrow, NextCodePoint(text, position));
  }
  return narrow;
}

}  // namespace VtrPlatform::details

// SPDX-License-Identifier: Apache-2.0
/// Checks the conversion of any bytes from UTF-8 to wide text and back, and how two such texts
/// compare.
#include <bit>
#include <cstdint>
#include <cstring>

#include "Fuzz.h"

namespace Fuzz {

namespace {

constexpr std::uint32_t none = ~0u;

/// The character that a sequence of bytes stands for, or none if the sequence is overlong or torn.
std::uint32_t Decoded(std::string_view bytes) {
  static constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto ones = static_cast<std::size_t>(std::countl_one(static_cast<std::uint8_t>(bytes[0])));
  if (ones == 1 || bytes.size() != std::max<std::size_t>(ones, 1)) return none;
  std::uint32_t code = static_cast<std::uint8_t>(bytes[0]) & (0xFFu >> (ones + 1));
  for (const char byte : bytes.substr(1)) {
    if ((byte & 0xC0) != 0x80) return none;
    code = code << 6 | static_cast<std::uint32_t>(byte & 0x3F);
  }
  const bool isCharacter = code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  return isCharacter && code >= least[bytes.size()] ? code : none;
}

/// True if a character can begin with these bytes. It tries the least and the greatest rest.
bool CanGoOn(std::string_view bytes) {
  for (std::size_t more = 1; bytes.size() + more <= 4; ++more) {
    for (const char trail : {'\x80', '\xBF'}) {
      if (Decoded(std::string(bytes).append(more, trail)) != none) return true;
    }
  }
  return false;
}

/// Removes a character, or the longest part that could begin one, from the front, and gives it.
/// This is a slow and plain way.
std::uint32_t TakeCharacter(std::string_view& rest) {
  std::size_t length = 1;
  while (length < rest.size() && CanGoOn(rest.substr(0, length)) &&
         (CanGoOn(rest.substr(0, length + 1)) || Decoded(rest.substr(0, length + 1)) != none)) {
    ++length;
  }
  const auto code = Decoded(rest.substr(0, length));
  rest.remove_prefix(length);
  return code == none ? 0xFFFD : code;
}

void Append(std::wstring& text, std::uint32_t code) {
  if (sizeof(wchar_t) == 2 && code > 0xFFFF) {
    text += static_cast<wchar_t>(0xD7C0 + (code >> 10));
    code = 0xDC00 | (code & 0x3FF);
  }
  text += static_cast<wchar_t>(code);
}

void CheckPair(const VtrString& left, const VtrString& right) {
  const bool areSame = std::ranges::equal(std::wstring_view(left), std::wstring_view(right));
  Expect((left.Compare(right) == 0) == areSame && (left == right) == areSame, "the same are equal");
  Expect(!areSame || left.GetSamplingHash() == right.GetSamplingHash(), "equal texts hash alike");
  Expect((left < right) == (right > left), "order turns with its sides");
  const int order = left.CompareNoCase(right);
  Expect(order == -right.CompareNoCase(left) && (!areSame || order == 0), "so it does in any case");
  std::wstring lowered(left, static_cast<std::size_t>(left.GetLength()));
  for (wchar_t& letter : lowered) {
    if (letter >= L'A' && letter <= L'Z') letter = static_cast<wchar_t>(letter + 32);
  }
  Expect(VtrString(std::wstring_view(lowered)).CompareNoCase(right) == order, "case is ignored");
  Expect((left + right).Mid(left.GetLength()) == right, "the rest of a joined text is its end");
}

}  // namespace

void CheckInput(std::string_view input) {
  std::wstring expected;
  for (auto rest = input; !rest.empty();) Append(expected, TakeCharacter(rest));
  const VtrString decoded = VtrString::FromUtf8(input);
  Expect(decoded == VtrString(std::wstring_view(expected)), "bytes decode as defined");
  const bool isWhole = expected.find(L'\uFFFD') == expected.npos;
  Expect(!isWhole || decoded.ToUtf8() == input, "well-formed bytes come back");
  Expect(VtrString::FromUtf8(decoded.ToUtf8()) == decoded, "decoded text comes back");

  std::wstring units(input.size() / sizeof(wchar_t), L'\0');
  std::memcpy(units.data(), input.data(), units.size() * sizeof(wchar_t));
  const VtrString any{std::wstring_view(units)};
  Expect(VtrString::FromUtf8(any.ToUtf8()).ToUtf8() == any.ToUtf8(), "any units can be encoded");
  CheckPair(any, decoded);
  const VtrString line = VtrString::FromUtf8(TakeLine(input));
  CheckPair(line, VtrString::FromUtf8(TakeLine(input)));
}

}  // namespace Fuzz

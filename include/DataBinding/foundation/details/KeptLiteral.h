// SPDX-License-Identifier: Apache-2.0
/// KeptLiteral keeps the texts of literals, each once in the process.
///
/// Thousands of objects of one class bear the same names. They share one string for each, which is
/// made when its text is first asked for, is never released, and is not counted by its owners. The
/// characters are the library's own copy, so nothing refers to a plug-in that may be unloaded.
///
/// A constant array of characters that is no literal cannot be told from one. So that a program
/// which makes names of such arrays does not fill the memory, the table keeps a limited number of
/// texts, and gives an ordinary string for each later one.
#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"

namespace VtrPlatform::details {

/// A literal's type is an array of constant characters. The type of a buffer that can be written to
/// is not.
template <class Text>
concept Literal = std::is_array_v<Text> && std::same_as < std::remove_extent_t<Text>,
const wchar_t > ;

/// Hashes all characters (FNV-1a), so that the compiler can do it.
[[nodiscard]] constexpr std::uint32_t LiteralHash(std::wstring_view text) noexcept {
  std::uint32_t hash = 2166136261U;
  for (const wchar_t unit : text) hash = (hash ^ static_cast<std::uint32_t>(unit)) * 16777619U;
  return hash;
}

/// Returns the buffer that is kept of a literal with this LiteralHash, or an ordinary one when the
/// table is full. The caller owns a reference to it, which for a kept buffer is not counted. May be
/// called on any thread; allocates only for a new text.
[[nodiscard]] DATABINDING_API StringBuffer* KeptBuffer(std::wstring_view literal,
                                                       std::uint32_t hash);
/// Returns the string of that buffer.
///@{
[[nodiscard]] inline VtrString KeptLiteral(std::wstring_view literal, std::uint32_t hash) {
  return VtrString::Adopt(KeptBuffer(literal, hash));
}
[[nodiscard]] inline VtrString KeptLiteral(std::wstring_view literal) {
  return KeptLiteral(literal, LiteralHash(literal));
}
///@}

}  // namespace VtrPlatform::details

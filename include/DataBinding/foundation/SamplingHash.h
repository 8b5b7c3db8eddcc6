// SPDX-License-Identifier: Apache-2.0
/// SamplingHash computes the hash of property names. It reads at most ten characters of a name,
/// which are evenly spread.
///
/// So its cost is bounded, however long a name is. The price is that long names collide if they
/// differ only between the characters that are read; a table that is keyed by this hash has to tell
/// such names apart by something else.
///
/// Only the low 16 bits of a character are used, so that a name of characters in Unicode's basic
/// plane has the same hash on every platform. The bytes of a character are mixed by FNV-1a
/// (http://www.isthe.com/chongo/tech/comp/fnv/).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "DataBinding/foundation/StringView.h"

namespace VtrUtils {

/// Returns the hash of a text, which may be empty.
[[nodiscard]] constexpr std::uint64_t SamplingHash(std::wstring_view text) noexcept {
  constexpr std::uint64_t offsetBasis = 0xcbf29ce484222325;
  constexpr std::uint64_t prime = 0x100000001b3;
  std::uint64_t hash = 0x42c52834b230ef45;
  const std::size_t step = text.size() / 10 + 1;
  for (std::size_t i = 0; i < text.size(); i += step) {
    const std::uint32_t unit = static_cast<std::uint32_t>(text[i]) & 0xFFFFu;
    const std::uint64_t low = (offsetBasis ^ (unit & 0xFFu)) * prime;
    const std::uint64_t mixed = (low ^ (unit >> 8)) * prime;
    hash ^= (hash >> 2) + (hash << 6) + mixed + 0x0fd258f8f3210c68;
  }
  return hash;
}

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::SamplingHash;
}  // namespace DataBinding

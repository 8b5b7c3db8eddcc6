// SPDX-License-Identifier: Apache-2.0
/// The hash of property names: reads at most ten characters of a name, evenly spread.
///
/// Its cost is bounded however long a name is, at the price that long names which differ only
/// between the sampled places collide; a table keyed by it needs a second criterion for those.
/// Characters count as 16-bit units, so that every name in the basic plane has one value on every
/// platform. The bytes of a character are mixed by FNV-1a
/// (http://www.isthe.com/chongo/tech/comp/fnv/).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "DataBinding/foundation/StringView.h"

namespace VtrUtils {

/// At most ten characters, from the first one on in equal steps. An empty text has a value as well.
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

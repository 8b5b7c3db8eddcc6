// SPDX-License-Identifier: Apache-2.0
/// A 16-byte identifier: plain data, ordered by its bytes as they lie in memory.
///
/// On Windows GUID is the system's own structure of the same layout; elsewhere it is Guid.
///
///   constexpr Guid themeId{0x2f3c1a90, 0x11d2, 0x4b7e, {0x9c, 0x01, 0x02, 0x03, 4, 5, 6, 7}};
#pragma once

#include <compare>
#include <cstdint>
#include <cstring>

#if defined(_WIN32)
#include <guiddef.h>
#endif

namespace VtrUtils {

struct Guid {
  /// The fields of the usual notation, in this machine's order of bytes.
  ///@{
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::uint8_t data4[8] = {};
  ///@}

  /// Equal when all 16 bytes are.
  friend bool operator==(const Guid& left, const Guid& right) noexcept {
    return std::memcmp(&left, &right, sizeof(Guid)) == 0;
  }
  /// The order of the bytes as they lie in memory, for keys of maps; it means nothing else.
  friend std::strong_ordering operator<=>(const Guid& left, const Guid& right) noexcept {
    return std::memcmp(&left, &right, sizeof(Guid)) <=> 0;
  }
};
static_assert(sizeof(Guid) == 16);

#if defined(_WIN32)
/// The system's own structure where it has one, which interfaces are asked for with.
using GUID = ::GUID;
static_assert(sizeof(GUID) == sizeof(Guid));
#else
/// The system's own structure where it has one, which interfaces are asked for with.
using GUID = Guid;
#endif

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Guid;
using VtrUtils::GUID;
}  // namespace DataBinding

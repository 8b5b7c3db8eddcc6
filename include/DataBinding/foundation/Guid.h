// SPDX-License-Identifier: Apache-2.0
/// Guid is an identifier of 16 bytes. It is plain data.
///
/// Interfaces are asked for with the type GUID. On Windows that is the system's own structure,
/// which has the same layout; elsewhere it is Guid.
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
  /// These are the fields of the usual notation, each in the byte order of this machine.
  ///@{
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::uint8_t data4[8] = {};
  ///@}

  /// Two identifiers are equal when all 16 bytes are.
  friend bool operator==(const Guid& left, const Guid& right) noexcept {
    return std::memcmp(&left, &right, sizeof(Guid)) == 0;
  }
  /// Orders identifiers by their bytes as they lie in memory. The order serves as one for keys of
  /// maps and means nothing else.
  friend std::strong_ordering operator<=>(const Guid& left, const Guid& right) noexcept {
    return std::memcmp(&left, &right, sizeof(Guid)) <=> 0;
  }
};
static_assert(sizeof(Guid) == 16);

#if defined(_WIN32)
/// The type of identifiers by which interfaces are asked for.
using GUID = ::GUID;
static_assert(sizeof(GUID) == sizeof(Guid));
#else
/// The type of identifiers by which interfaces are asked for.
using GUID = Guid;
#endif

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Guid;
using VtrUtils::GUID;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A KeyTable finds the rows of a list by their keys. It holds ids only, and reads the keys in the
/// rows.
///
/// The table is one of open addressing, with a byte of the hash beside each id, so that a row is
/// read only where its key is most likely the one sought. It has one entry for a key. Further rows
/// of a key are doubles: they hang on the first one in a chain, so that ten thousand rows of one
/// key are no slower than others. Room for the chains is made only in lists that have doubles.
///
/// A row whose key changes is erased before and inserted again after it. What insertions need is
/// reserved before them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/lists/details/RowSlots.h"

namespace DataBinding::details {

/// Reads rows as they are, or as they will be when everything that waits is done.
struct RowReader {
  [[nodiscard]] const void* Row(RowId id) const noexcept {
    return coming == nullptr ? storage->Row(id) : ComingRow(id);
  }
  [[nodiscard]] DATABINDING_API const void* ComingRow(RowId id) const noexcept;

  const RowSlots* storage = nullptr;
  /// For each id what the row will be; null for rows that do not change.
  const std::vector<const void*>* coming = nullptr;
};

class DATABINDING_API KeyTable {
 public:
  static constexpr RowId none = ~RowId{0};

  /// Makes room for so many insertions. Strong guarantee.
  void Reserve(std::size_t insertions, RowId idsBelow, const RowReader& rows);
  /// Makes room for doubles.
  void AllowDoubles(RowId idsBelow);
  /// Returns false when there is a row of the same key. The new one then is a double, if there is
  /// room for doubles, and else is left out.
  bool Insert(RowId id, const RowReader& rows) noexcept;
  void Erase(RowId id, const RowReader& rows) noexcept;
  /// Returns a row of a key, which is the first in the chain, or `none`.
  [[nodiscard]] RowId Find(const void* key, const RowReader& rows) const noexcept;
  /// Returns the next row of the same key, or `none`.
  [[nodiscard]] RowId Next(RowId id) const noexcept {
    return id < links.size() ? links[id].next : none;
  }
  [[nodiscard]] bool HasDoubles() const noexcept { return doubles != 0; }

 private:
  struct Link {
    RowId previous = none;
    RowId next = none;
  };
  struct Probe;

  void Rebuild(std::size_t rows, const RowReader& reader);
  void Place(RowId id, std::uint64_t hash) noexcept;
  void LinkBehind(RowId first, RowId id) noexcept;
  void Vacate(std::size_t slot) noexcept;

  std::vector<std::uint8_t> tags;  // free, left, or a byte of the hash
  std::vector<RowId> ids;
  std::vector<Link> links;  // by id; empty until there is a double
  std::size_t used = 0;     // slots that are not free
  std::size_t keys = 0;     // slots that hold an id
  std::size_t doubles = 0;
};

}  // namespace DataBinding::details

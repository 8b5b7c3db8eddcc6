// SPDX-License-Identifier: Apache-2.0
/// A RowTable tells the library all that it has to know of a type of rows: its size, how rows are
/// copied and compared, and its fields. So lists and views are compiled once, and each row type
/// adds a few functions only.
///
/// A table is code and data of the module that uses the row type. Like a runtime_type, it lives
/// until that module is unloaded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"
#include "DataBinding/reflection/Value.h"

namespace DataBinding::details {

class PropertyBase;

/// One field of a row type, without its C++ type.
struct RowField {
  VtrString name;
  const runtime_type_base* type = nullptr;
  ValueKind kind = ValueKind::Nothing;  // that of the type's form
  bool isReadOnly = false;
  bool isKey = false;
  std::size_t number = 0;
  /// Returns the member of a row, where it is no property.
  const void* (*member)(const void* row) = nullptr;
  /// Returns the property that the field is; null where it is a plain member.
  PropertyBase& (*property)(const void* row) = nullptr;
  /// Says why the field's validator refuses the row's value, or answers an empty text.
  VtrString (*reasonAgainst)(const RowField& field, const void* row) = nullptr;
  /// Returns the row's value; nothing if the field's type has no form.
  Value (*get)(const void* row) = nullptr;
  /// Sets the member of a row, or says why the value does not fit its type.
  SetResult (*set)(void* row, const Value& value) = nullptr;
  /// Is the description of the field in the row type's own table.
  const void* description = nullptr;
};

struct RowTable {
  const runtime_type_base* type = nullptr;
  std::size_t size = 0;
  std::size_t alignment = 0;
  /// Tells that the rows are data sources. The next four are null then, since a SourceList stores
  /// pointers to its sources by a table of its own (OwnedSources.h).
  bool areSources = false;
  /// Copies a row into raw memory. This is the only one of these functions that may throw, beside
  /// `differing`.
  void (*copy)(void* to, const void* from) = nullptr;
  /// Moves a row into raw memory; the other one lives on, without content.
  void (*move)(void* to, void* from) noexcept = nullptr;
  void (*exchange)(void* one, void* other) noexcept = nullptr;
  void (*destroy)(void* row) noexcept = nullptr;
  /// Tells a row which id it has got, when it has been moved into its slot. May be null.
  void (*placed)(void* row, std::uint32_t id) noexcept = nullptr;
  /// Returns a bit for each field that differs. The last bit stands for the fields from the 64th
  /// on, and for what differs outside of all fields. 0 means that the rows are equal.
  std::uint64_t (*differing)(const void* one, const void* other) = nullptr;
  /// Returns the key of a row. Null where the row type has no key; then the next two are, too.
  const void* (*key)(const void* row) noexcept = nullptr;
  std::size_t (*hashOfKey)(const void* key) noexcept = nullptr;
  bool (*areKeysEqual)(const void* one, const void* other) noexcept = nullptr;
  /// Shows a key in a message.
  VtrString (*keyText)(const void* key) = nullptr;
  std::vector<RowField> fields;

  static constexpr std::size_t lastBit = 63;
  /// Returns the bit by which `differing` and a change name a field.
  [[nodiscard]] static constexpr std::uint64_t BitOf(std::size_t field) noexcept {
    return std::uint64_t{1} << (field < lastBit ? field : lastBit);
  }
};

}  // namespace DataBinding::details

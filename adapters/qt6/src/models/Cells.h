// SPDX-License-Identifier: Apache-2.0
/// These functions say what a cell of a model is to a view of Qt, and set it to what a view gives.
/// Truth values are check boxes, and numbers stand on the right.
#pragma once

#include <QVariant>
#include <cstddef>

#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/Value.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/Variant.h"

namespace DataBinding::Qt6::details {

/// Rows and columns of Qt are of type int.
[[nodiscard]] constexpr std::size_t ToSize(int number) { return static_cast<std::size_t>(number); }

/// Returns the data of a role. `read` returns the value, and is called only where it counts.
template <class Read>
[[nodiscard]] QVariant CellData(ValueKind kind, int role, const Read& read) {
  const bool isBox = kind == ValueKind::Bool;
  if (role == Qt::EditRole || (role == Qt::DisplayRole && !isBox)) return ToVariant(read());
  if (role == Qt::CheckStateRole && isBox) {
    const Value cell = read();
    const bool* const isChecked = cell.Get<bool>();
    if (isChecked == nullptr) return {};
    return static_cast<int>(*isChecked ? Qt::Checked : Qt::Unchecked);
  }
  if (role == Qt::TextAlignmentRole && IsNumber(kind)) {
    return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
  }
  return {};
}

/// Returns the flag by which the user changes a cell.
[[nodiscard]] inline Qt::ItemFlag EditFlag(ValueKind kind) {
  return kind == ValueKind::Bool ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
}

/// Tells whether a view sets cells of this kind by this role.
[[nodiscard]] inline bool IsEditRole(ValueKind kind, int role) {
  return role == Qt::EditRole || (role == Qt::CheckStateRole && kind == ValueKind::Bool);
}

/// Sets a cell to what a view gives: `write` takes values, and `writeText` the texts that were
/// typed.
template <class Write, class WriteText>
[[nodiscard]] SetResult SetCellData(const QVariant& given, int role, const Write& write,
                                    const WriteText& writeText) {
  if (role == Qt::CheckStateRole) return write(Value(given.toInt() == Qt::Checked));
  if (given.typeId() != QMetaType::QString) return write(ToValue(given));
  return writeText(ToVtrString(given.toString()));
}

/// Returns what the user is told of a refusal.
[[nodiscard]] inline QString ReasonOf(const SetResult& refusal) {
  return ToQString(refusal.reason.IsEmpty() ? refusal.text : refusal.reason);
}

}  // namespace DataBinding::Qt6::details

// SPDX-License-Identifier: Apache-2.0
/// These functions turn the library's Values into Qt's QVariants and back.
///
/// A whole number becomes an int as long as it fits, so that Qt's delegates edit it in a spin box,
/// and a long long otherwise. Nothing becomes an invalid QVariant, and the other kinds become bool,
/// double and QString. Back, all types of whole numbers, floating-point numbers, bool and QString
/// become what they are; every other type that Qt turns into a text, such as QDate, becomes that
/// text, and one that it does not becomes nothing. Both may be called on any thread.
///
///   item->setData(Qt6::ToVariant(list.Cell(row, 0)), Qt::EditRole);
///   list.SetCell(row, 0, Qt6::ToValue(item->data(Qt::EditRole)));
#pragma once

#include <QVariant>

#include "DataBinding/reflection/Value.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

/// Returns what the value holds as Qt's.
[[nodiscard]] DATABINDING_QT6_API QVariant ToVariant(const Value& value);
/// Returns what the variant holds as the library's.
[[nodiscard]] DATABINDING_QT6_API Value ToValue(const QVariant& variant);

}  // namespace DataBinding::Qt6

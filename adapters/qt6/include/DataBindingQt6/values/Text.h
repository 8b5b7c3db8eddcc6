// SPDX-License-Identifier: Apache-2.0
/// These functions turn the library's texts into Qt's and back.
///
/// Both are copies, made character by character: the library's texts are of wchar_t, which is 32
/// bits wide on Linux and 16 bits on Windows, and Qt's are UTF-16. What is no valid text becomes
/// U+FFFD. Both may be called on any thread.
///
///   label->setText(Qt6::ToQString(*source->name));
///   SetProperty(source, L"Name", Qt6::ToVtrString(edit->text()));
#pragma once

#include <QDebug>
#include <QString>
#include <QStringView>

#include "DataBinding/foundation/String.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

/// Returns the same text as Qt's.
[[nodiscard]] DATABINDING_QT6_API QString ToQString(const VtrString& text);
/// Returns the same text as the library's.
[[nodiscard]] DATABINDING_QT6_API VtrString ToVtrString(QStringView text);

}  // namespace DataBinding::Qt6

namespace VtrPlatform {

/// Writes the text as Qt writes a QString, in quotes.
DATABINDING_QT6_API QDebug operator<<(QDebug out, const VtrStringT<wchar_t>& text);

}  // namespace VtrPlatform

// SPDX-License-Identifier: Apache-2.0
/// Turns values into texts, and texts into cells.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "../common/Quantities.h"

namespace Sysmon {

enum class Align { Left, Right };

/// A value as people read it, by its type: 1536 bytes as "1.5 KiB".
[[nodiscard]] VtrString Show(const Value& value);

/// What the clock on the wall showed.
[[nodiscard]] std::tm LocalTime(std::time_t time);

/// A bar of so many cells, of which a share is filled.
[[nodiscard]] std::wstring Bar(const Value& share, int width);

/// How many cells a character takes; less than 0 for one that cannot be shown. Each half of a
/// surrogate pair takes one.
[[nodiscard]] int CellsOf(wchar_t character);

/// Cuts off or pads a text, so that it takes exactly as many cells. A character that the terminal
/// cannot show, or that it would obey, becomes a question mark. A character that takes no cell is
/// dropped.
[[nodiscard]] std::wstring Fit(std::wstring_view text, int width, Align align);

}  // namespace Sysmon

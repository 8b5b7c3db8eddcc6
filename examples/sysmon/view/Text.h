/// Values as texts, and texts as cells.
#pragma once

#include <string>
#include <string_view>

#include "../common/Quantities.h"

namespace Sysmon {

enum class Align { Left, Right };

/// A value as people read it, by its type: 1536 bytes as "1.5 KiB".
[[nodiscard]] VtrString Show(const Value& value);

/// A bar of so many cells, of which a share is filled.
[[nodiscard]] std::wstring Bar(const Value& share, int width);

/// A text that takes exactly so many cells, cut off or padded. What the terminal cannot show, or
/// would obey, becomes a question mark; what takes no cell is dropped.
[[nodiscard]] std::wstring Fit(std::wstring_view text, int width, Align align);

}  // namespace Sysmon

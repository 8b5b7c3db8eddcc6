// SPDX-License-Identifier: Apache-2.0
#include <cwchar>

#include "Text.h"

namespace Sysmon {

int CellsOf(wchar_t character) { return wcwidth(character); }

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace Sysmon

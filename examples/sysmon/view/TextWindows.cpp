// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include "Text.h"

namespace Sysmon {

int CellsOf(wchar_t character) {
  WORD kind = 0;
  WORD shape = 0;
  GetStringTypeW(CT_CTYPE1, &character, 1, &kind);
  GetStringTypeW(CT_CTYPE3, &character, 1, &shape);
  if ((kind & C1_CNTRL) != 0) return -1;
  if ((shape & C3_NONSPACING) != 0) return 0;
  return (shape & C3_HALFWIDTH) == 0 && (shape & (C3_FULLWIDTH | C3_IDEOGRAPH)) != 0 ? 2 : 1;
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_s(&local, &time);
  return local;
}

}  // namespace Sysmon

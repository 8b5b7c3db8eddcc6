// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include "DataBinding/foundation/CriticalSection.h"

namespace VtrUtils {

namespace {
CRITICAL_SECTION* Native(std::byte* section) noexcept {
  return reinterpret_cast<CRITICAL_SECTION*>(section);
}
}  // namespace

CriticalSection::CriticalSection() {
  static_assert(sizeof(section) == sizeof(CRITICAL_SECTION));
  InitializeCriticalSection(Native(section));
  SetCriticalSectionSpinCount(Native(section), spinCount);
}

CriticalSection::~CriticalSection() { DeleteCriticalSection(Native(section)); }

bool CriticalSection::TryEnter() { return TryEnterCriticalSection(Native(section)) != 0; }

void CriticalSection::Enter() {
  if (!TryEnter()) EnterCriticalSection(Native(section));
}

void CriticalSection::Leave() { LeaveCriticalSection(Native(section)); }

}  // namespace VtrUtils

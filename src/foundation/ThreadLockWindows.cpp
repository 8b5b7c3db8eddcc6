// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include "DataBinding/foundation/ThreadLock.h"

namespace VtrUtils {

static_assert(sizeof(SRWLOCK) == sizeof(void*), "the lock is kept as one pointer");

namespace {
SRWLOCK* Slim(void** lock) noexcept { return reinterpret_cast<SRWLOCK*>(lock); }
}  // namespace

void ThreadLock::LockShared() noexcept { AcquireSRWLockShared(Slim(&slimLock)); }
void ThreadLock::UnlockShared() noexcept { ReleaseSRWLockShared(Slim(&slimLock)); }
void ThreadLock::Lock() noexcept { AcquireSRWLockExclusive(Slim(&slimLock)); }
void ThreadLock::Unlock() noexcept { ReleaseSRWLockExclusive(Slim(&slimLock)); }

}  // namespace VtrUtils

// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include <system_error>

#include "Waiting.h"

namespace Sysmon {

namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

bool IsReady(HANDLE waitable) { return WaitForSingleObject(waitable, 0) == WAIT_OBJECT_0; }

}  // namespace

WakeUp::WakeUp() : waitable(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  if (waitable == nullptr) Fail("cannot make an event object");
}

WakeUp::~WakeUp() { CloseHandle(waitable); }

void WakeUp::Set() const noexcept { SetEvent(waitable); }
void WakeUp::Clear() const noexcept { ResetEvent(waitable); }

WhatIsReady WaitFor(Waitable signals, Waitable events, bool withKeys) {
  const HANDLE inputs[] = {signals, events, GetStdHandle(STD_INPUT_HANDLE)};
  if (WaitForMultipleObjects(withKeys ? 3 : 2, inputs, FALSE, INFINITE) == WAIT_FAILED) {
    Fail("cannot wait");
  }
  return {.signals = IsReady(signals),
          .events = IsReady(events),
          .keys = withKeys && IsReady(inputs[2])};
}

}  // namespace Sysmon

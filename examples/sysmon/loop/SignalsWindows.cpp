// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include <atomic>
#include <system_error>

#include "Signals.h"

namespace Sysmon {

namespace {

/// The handler runs on a thread of its own, and reaches the loop by this.
WakeUp* arrival = nullptr;
std::atomic<int> arrived{0};

BOOL WINAPI Note(DWORD event) {
  const bool isFinal = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
  arrived = isFinal ? SIGTERM : SIGINT;
  arrival->Set();
  if (isFinal) Sleep(INFINITE);  // when this returns, the process is ended at once
  return TRUE;
}

}  // namespace

Signals::Signals(bool /*hasScreen*/) {
  static WakeUp forGood;  // never ends, since a handler may still run when this object has ended
  arrival = &forGood;
  if (SetConsoleCtrlHandler(&Note, TRUE) == 0) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                            "cannot handle console events");
  }
}

Signals::~Signals() { SetConsoleCtrlHandler(&Note, FALSE); }

Waitable Signals::Ready() const noexcept { return arrival->Ready(); }

Request Signals::Next() {
  arrival->Clear();
  const int signal = arrived.exchange(0);
  if (signal == 0) return Request::None;
  ending = signal;
  return Request::End;
}

void Signals::Stop() const {}

void Signals::EndBy(int /*signal*/) { ExitProcess(STATUS_CONTROL_C_EXIT); }

}  // namespace Sysmon

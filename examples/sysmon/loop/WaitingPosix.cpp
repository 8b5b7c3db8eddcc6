// SPDX-License-Identifier: Apache-2.0
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include "Waiting.h"

namespace Sysmon {

WakeUp::WakeUp() : waitable(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (waitable < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
  }
}

WakeUp::~WakeUp() { close(waitable); }

void WakeUp::Set() const noexcept {
  const std::uint64_t one = 1;
  // Writing fails only when the descriptor is readable already.
  static_cast<void>(!write(waitable, &one, sizeof one));
}

void WakeUp::Clear() const noexcept {
  std::uint64_t count = 0;
  static_cast<void>(!read(waitable, &count, sizeof count));
}

WhatIsReady WaitFor(Waitable signals, Waitable events, bool withKeys) {
  pollfd inputs[] = {{signals, POLLIN, 0}, {events, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
  if (poll(inputs, withKeys ? 3 : 2, -1) < 0) {
    if (errno == EINTR) return {};  // a signal came, and waits in the pipe
    throw std::system_error(errno, std::generic_category(), "cannot wait");
  }
  return {.signals = inputs[0].revents != 0,
          .events = inputs[1].revents != 0,
          .keys = (inputs[2].revents & POLLIN) != 0,
          .isTerminalGone = (inputs[2].revents & ~POLLIN) != 0};
}

}  // namespace Sysmon

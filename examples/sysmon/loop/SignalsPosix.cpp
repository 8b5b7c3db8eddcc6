// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "Signals.h"

namespace Sysmon {

namespace {

/// The read end and the write end of a pipe of signals. They are static, since a signal handler has
/// no other way to know them.
int ends[2] = {-1, -1};

void Note(int signal) {
  const int savedError = errno;
  const auto byte = static_cast<unsigned char>(signal);
  // A full pipe is no loss: so many signals wait in it already.
  static_cast<void>(!write(ends[1], &byte, 1));
  errno = savedError;
}

}  // namespace

Signals::Signals(bool hasScreen) {
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
  }
  struct sigaction action {};
  action.sa_handler = &Note;
  action.sa_flags = SA_RESTART;
  const auto take = [&](int signal) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_IGN) return;  // as nohup ignores the hang-up
    sigaction(signal, &action, &former[signal]);
  };
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) take(signal);
  if (!hasScreen) return;
  for (const int signal : {SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH}) take(signal);
}

Signals::~Signals() {
  for (const auto& [signal, action] : former) sigaction(signal, &action, nullptr);
  for (int& end : ends) {
    close(end);
    end = -1;
  }
}

Waitable Signals::Ready() const noexcept { return ends[0]; }

Request Signals::Next() {
  unsigned char signal = 0;
  if (read(ends[0], &signal, 1) != 1) return Request::None;
  switch (signal) {
    case SIGTSTP:
      return Request::Stop;
    case SIGCONT:
    case SIGWINCH:
      return Request::Redraw;
    default:
      ending = signal;
      return Request::End;
  }
}

void Signals::Stop() const {
  struct sigaction standard {};
  struct sigaction handled {};
  standard.sa_handler = SIG_DFL;
  sigaction(SIGTSTP, &standard, &handled);
  raise(SIGTSTP);
  sigaction(SIGTSTP, &handled, nullptr);
}

void Signals::EndBy(int signal) { raise(signal); }

}  // namespace Sysmon

#include "SignalPipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace Sysmon {

namespace {

/// Read end and write end. Handlers have no other way to know them.
int ends[2] = {-1, -1};

void Note(int signal) {
  const int savedError = errno;
  const auto byte = static_cast<unsigned char>(signal);
  // When the pipe is full, more signals wait in it than anybody needs.
  static_cast<void>(!write(ends[1], &byte, 1));
  errno = savedError;
}

}  // namespace

SignalPipe::SignalPipe(std::initializer_list<int> signals) {
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
  }
  struct sigaction action {};
  action.sa_handler = &Note;
  action.sa_flags = SA_RESTART;
  for (const int signal : signals) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_IGN) continue;  // such as the hang-up, under nohup
    sigaction(signal, &action, &former[signal]);
  }
}

SignalPipe::~SignalPipe() {
  for (const auto& [signal, action] : former) sigaction(signal, &action, nullptr);
  for (int& end : ends) {
    close(end);
    end = -1;
  }
}

int SignalPipe::Descriptor() const noexcept { return ends[0]; }

int SignalPipe::Next() {
  unsigned char byte = 0;
  return read(ends[0], &byte, 1) == 1 ? byte : 0;
}

void SignalPipe::RaiseUnhandled(int signal) const {
  struct sigaction standard {};
  struct sigaction handled {};
  standard.sa_handler = SIG_DFL;
  sigaction(signal, &standard, &handled);
  raise(signal);
  sigaction(signal, &handled, nullptr);
}

}  // namespace Sysmon

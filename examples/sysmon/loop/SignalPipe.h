/// Signals as bytes in a pipe, so that a loop that polls meets them among its other input.
///
/// There is one at a time; the former handlers come back when it ends.
#pragma once

#include <csignal>
#include <initializer_list>
#include <map>

namespace Sysmon {

class SignalPipe {
 public:
  /// Throws std::system_error when the pipe cannot be made.
  explicit SignalPipe(std::initializer_list<int> signals);
  SignalPipe(const SignalPipe&) = delete;
  SignalPipe& operator=(const SignalPipe&) = delete;
  ~SignalPipe();

  /// Readable when a signal waits.
  [[nodiscard]] int Descriptor() const noexcept;
  /// The next signal that came, or 0.
  [[nodiscard]] static int Next();
  /// Does to this process what the signal does to one that does not handle it.
  void RaiseUnhandled(int signal) const;

 private:
  std::map<int, struct sigaction> former;
};

}  // namespace Sysmon

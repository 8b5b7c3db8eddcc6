// SPDX-License-Identifier: Apache-2.0
/// Turns signals, or on Windows console events, into requests that a loop reads among its other
/// input.
///
/// Only one object may exist at a time. It restores the former handlers when it ends.
#pragma once

#include <csignal>
#include <map>

#include "Waiting.h"

namespace Sysmon {

enum class Request { None, End, Stop, Redraw };

class Signals {
 public:
  /// Handles the signals that concern a screen, too, if there is one. Throws std::system_error when
  /// it cannot.
  explicit Signals(bool hasScreen);
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;
  ~Signals();

  /// The thing that is ready when a request waits.
  [[nodiscard]] Waitable Ready() const noexcept;
  /// The next request that came.
  [[nodiscard]] Request Next();
  /// The signal that asked for the end, or 0.
  [[nodiscard]] int Ending() const noexcept { return ending; }
  /// Stops this process, until it is told to go on.
  void Stop() const;
  /// Ends this process as the signal would end a process that does not handle it.
  static void EndBy(int signal);

 private:
  int ending = 0;
#if !defined(_WIN32)
  std::map<int, struct sigaction> former;
#endif
};

}  // namespace Sysmon

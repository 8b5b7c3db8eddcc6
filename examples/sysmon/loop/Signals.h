// SPDX-License-Identifier: Apache-2.0
/// What the world outside asks of the program by signals, or on Windows by console events, as
/// requests that a loop meets among its other input.
///
/// There is one at a time; the former handlers come back when it ends.
#pragma once

#include <csignal>
#include <map>

#include "Waiting.h"

namespace Sysmon {

enum class Request { None, End, Stop, Redraw };

class Signals {
 public:
  /// Takes those that concern a screen, too, where there is one. Throws std::system_error when it
  /// cannot.
  explicit Signals(bool hasScreen);
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;
  ~Signals();

  /// Ready when a request waits.
  [[nodiscard]] Waitable Ready() const noexcept;
  /// The next request that came.
  [[nodiscard]] Request Next();
  /// The signal that asked for the end, or 0.
  [[nodiscard]] int Ending() const noexcept { return ending; }
  /// Stops this process, until it is told to go on.
  void Stop() const;
  /// Ends this process the way in which the signal ends one that does not handle it.
  static void EndBy(int signal);

 private:
  int ending = 0;
#if !defined(_WIN32)
  std::map<int, struct sigaction> former;
#endif
};

}  // namespace Sysmon

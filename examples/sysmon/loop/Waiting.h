// SPDX-License-Identifier: Apache-2.0
/// What a loop waits for: the things that become ready, one that any thread makes so, and the
/// waiting itself.
#pragma once

namespace Sysmon {

#if defined(_WIN32)
using Waitable = void*;  ///< the handle of an event object
#else
using Waitable = int;  ///< a descriptor that becomes readable
#endif

/// Becomes ready on any thread's word.
class WakeUp {
 public:
  /// Throws std::system_error when there is none to be had.
  WakeUp();
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;
  ~WakeUp();

  [[nodiscard]] Waitable Ready() const noexcept { return waitable; }
  void Set() const noexcept;
  void Clear() const noexcept;

 private:
  Waitable waitable;
};

struct WhatIsReady {
  bool signals = false;
  bool events = false;
  bool keys = false;
  bool isTerminalGone = false;
};

/// Blocks until one of them is ready, and the keyboard where it counts; may answer that none is.
/// Throws std::system_error when it cannot wait.
[[nodiscard]] WhatIsReady WaitFor(Waitable signals, Waitable events, bool withKeys);

}  // namespace Sysmon

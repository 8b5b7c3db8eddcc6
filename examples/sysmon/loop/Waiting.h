// SPDX-License-Identifier: Apache-2.0
/// Waiting: things that become ready, a thing that any thread can make ready, and the function that
/// waits for them.
#pragma once

namespace Sysmon {

#if defined(_WIN32)
using Waitable = void*;  ///< the handle of an event object
#else
using Waitable = int;  ///< a descriptor that becomes readable
#endif

/// A thing that any thread can make ready.
class WakeUp {
 public:
  /// Throws std::system_error when the system gives none.
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

/// Blocks until one of the things is ready, or the keyboard if asked for; may also return when none
/// is. Throws std::system_error when it cannot wait.
[[nodiscard]] WhatIsReady WaitFor(Waitable signals, Waitable events, bool withKeys);

}  // namespace Sysmon

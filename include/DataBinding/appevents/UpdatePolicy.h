// SPDX-License-Identifier: Apache-2.0
/// Ties an event broadcaster to the application's idle pass.
///
/// One callback in the process, the UpdateUI callback, tells the application that events wait: its
/// message loop is then to call DispatchPendingEvents. IdlePass sets it up; an application with
/// ways of its own may set it itself. Setting it takes no lock: do so before other threads raise
/// events and after they have stopped.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"

namespace DataBinding {
class IdlePass;
}  // namespace DataBinding

namespace DataBinding::AEB {

struct DATABINDING_API UpdatePolicy {
 public:
  /// Stores the number of the application's own message, which the library never looks at.
  void SetMessage(unsigned int number) noexcept { message = number; }
  /// Subscribes the listeners that wait for it, so that they hear what is delivered next.
  void PreNotify();
  /// Runs the UpdateUI callback if one is set. Always true.
  bool PostUpdate();
  /// Replaces the callback for all broadcasters. It runs on the threads that raise events.
  static void SetUpdateUICallback(const RepeatingCallback<void()>& callback);

  /// What SetMessage stored; 0 before.
  unsigned int message = 0;

 private:
  friend class DataBinding::IdlePass;
  static RepeatingCallback<void()>& UpdateUICallback();
};

}  // namespace DataBinding::AEB

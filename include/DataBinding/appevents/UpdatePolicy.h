// SPDX-License-Identifier: Apache-2.0
/// An UpdatePolicy ties an event broadcaster to the application's idle pass.
///
/// The process has one UpdateUI callback, which tells the application that events wait. IdlePass
/// sets it, and the message loop then calls IdlePass::Run. An application that does without
/// IdlePass sets the callback itself, and its loop calls DispatchPendingEvents. Setting it takes no
/// lock, so it is set before other threads raise events, or after they have stopped.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"

namespace DataBinding::AEB {

struct DATABINDING_API UpdatePolicy {
 public:
  /// Stores the number of the application's own message, which the library never looks at.
  void SetMessage(unsigned int number) noexcept { message = number; }
  /// Subscribes the listeners that wait in WAppEventRegistrar, so that they hear the next event.
  void PreNotify();
  /// Runs the UpdateUI callback if one is set. Always true.
  bool PostUpdate();
  /// Replaces the UpdateUI callback, for all broadcasters. It runs on the threads that raise
  /// events.
  static void SetUpdateUICallback(const RepeatingCallback<void()>& callback);
  /// The UpdateUI callback, which is null until one is set.
  [[nodiscard]] static const RepeatingCallback<void()>& GetUpdateUICallback();

  /// The number that SetMessage stored; 0 before.
  unsigned int message = 0;
};

}  // namespace DataBinding::AEB

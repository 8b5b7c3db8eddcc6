// SPDX-License-Identifier: Apache-2.0
/// Holds an event back for the length of a block: while the hold lives, the event's name is
/// disabled, and the newest event that comes up for delivery is kept.
///
/// Older events of the name are lost, so a hold suits states, of which the newest says all, and not
/// events that are counted or collected. When the hold ends and nobody else disables the name, the
/// kept event is delivered at once, unless Drop was called.
///
/// Holds nest and count. EnableEvent does nothing to a name that only holds disable. A hold that
/// outlives its broadcaster does nothing to the next broadcaster. For the delivering thread.
///
///   const EventHold pause(loadChanged);
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/EventBroadcaster.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API EventHold {
 public:
  /// Disables the name from now on.
  [[nodiscard]] explicit EventHold(const VtrString& eventName);
  /// Disables the event's name from now on.
  template <class... Args>
  [[nodiscard]] explicit EventHold(const AppEvent<Args...>& event) : EventHold(event.Name()) {}
  /// Takes over the other hold, which then holds nothing. Assignment first ends the hold that this
  /// object had.
  ///@{
  EventHold(EventHold&& other) noexcept;
  EventHold& operator=(EventHold&& other) noexcept;
  ///@}
  EventHold(const EventHold&) = delete;
  EventHold& operator=(const EventHold&) = delete;
  /// Delivers the held event, see above. What an event of the application's own kind throws goes to
  /// the error handler.
  ~EventHold();

  /// Has the end of the hold enable the name without delivering the held event.
  void Drop() noexcept { firesAtEnd = false; }

 private:
  VtrString name;
  WeakPtr<PolicyEventBroadcaster> broadcaster;
  bool firesAtEnd = true;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Holds an event back for the length of a block: while it lives the name is disabled, and the
/// newest event of it is kept.
///
/// It is for states, of which the newest says all: of events that are counted or collected the
/// others are lost. At its end, if nobody else disables the name, the held event is delivered at
/// once, unless Drop was called. Holds nest and count. EnableEvent does nothing where only holds
/// disable the name. A hold that outlives its broadcaster does nothing to the next one. For the
/// delivering thread.
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
  /// The hold goes along; the other one holds nothing then. What was held before is let go.
  ///@{
  EventHold(EventHold&& other) noexcept;
  EventHold& operator=(EventHold&& other) noexcept;
  ///@}
  EventHold(const EventHold&) = delete;
  EventHold& operator=(const EventHold&) = delete;
  /// What a held event of the application's own kind throws goes to the error handler.
  ~EventHold();

  /// Lets the name go at the end without delivering what was held.
  void Drop() noexcept { firesAtEnd = false; }

 private:
  VtrString name;
  WeakPtr<PolicyEventBroadcaster> broadcaster;
  bool firesAtEnd = true;
};

}  // namespace DataBinding

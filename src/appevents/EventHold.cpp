// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/EventHold.h"

#include <utility>

namespace DataBinding {

EventHold::EventHold(const VtrString& eventName)
    : name(eventName), broadcaster(IAppEventBroadcaster::GetInstance().GetWeakPtr()) {
  broadcaster->BeginHold(name);
}

EventHold::EventHold(EventHold&& other) noexcept
    : name(std::move(other.name)),
      broadcaster(std::exchange(other.broadcaster, {})),
      firesAtEnd(other.firesAtEnd) {}

EventHold& EventHold::operator=(EventHold&& other) noexcept {
  if (this != &other) {
    EventHold ended(std::move(*this));
    name = std::move(other.name);
    broadcaster = std::exchange(other.broadcaster, {});
    firesAtEnd = other.firesAtEnd;
  }
  return *this;
}

EventHold::~EventHold() {
  if (broadcaster) broadcaster->EndHold(name, firesAtEnd);
}

}  // namespace DataBinding

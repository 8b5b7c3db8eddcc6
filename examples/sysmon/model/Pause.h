// SPDX-License-Identifier: Apache-2.0
/// Holds the measurements back, so that the views stand still. When the pause is over or this
/// object ends, the newest event of each measurement is delivered. Events of things that have
/// happened are delivered all the while.
#pragma once

#include <list>
#include <vector>

#include <DataBinding/appevents/AppEventListener.h>
#include <DataBinding/appevents/EventHold.h>

#include "Events.h"

namespace Sysmon {

class Pause final : public DataBinding::AppEventListener {
 public:
  Pause() = default;

  void Toggle();
  [[nodiscard]] bool IsOn() const { return !holds.empty(); }
  void InitEventMap() override;

 private:
  void TakeInterfaces(const std::vector<Interface>& now) { interfaces = now; }
  void Begin();

  std::vector<Interface> interfaces;
  std::list<DataBinding::EventHold> holds;
};

}  // namespace Sysmon

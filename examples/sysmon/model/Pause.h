// SPDX-License-Identifier: Apache-2.0
/// Holds the measurements back, so that everything shown of them stays as it is, until it is over
/// or ends: the newest of each is delivered then. What has happened is told all the while.
#pragma once

#include <list>
#include <string>
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
  void TakeInterfaces(const std::vector<std::string>& names) { interfaces = names; }
  void Begin();

  std::vector<std::string> interfaces;
  std::list<DataBinding::EventHold> holds;
};

}  // namespace Sysmon

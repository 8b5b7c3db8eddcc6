// SPDX-License-Identifier: Apache-2.0
/// The operations of the scripts of application events, and the names that they use.
#pragma once

#include <array>
#include <string_view>

#include "Script.h"

namespace DataBinding::Stress {

inline constexpr int eventCount = 3;
inline constexpr int subscriptionCount = 5;
inline constexpr int appListenerCount = 3;
inline constexpr int holdCount = 2;
inline constexpr int hookCount = 3;
inline constexpr int originCount = 3;  // the last is the module that raises the typed events

template <class World>
std::vector<Operation<World>> EventOperations() {
  using enum Place;
  return {
      {"Raise", "e3b2", &World::Raise, 32, Wiring},
      {"RaiseOwn", "e3o3b2", &World::RaiseOwn, 8, Wiring},
      {"Send", "e3", &World::Send, 8},
      {"Dispatch", "", &World::Dispatch, 8},
      {"Run", "", &World::Run, 10},
      {"RunFor", "b2", &World::RunFor, 10},
      {"Subscribe", "s5e3", &World::Subscribe, 12, Wiring},
      {"Cancel", "s5", &World::Cancel, 4, Wiring},
      {"RenewListener", "l3e3m2", &World::RenewListener, 6, Wiring},
      {"Activate", "l3", &World::Activate, 4, Wiring},
      {"Deactivate", "l3", &World::Deactivate, 4, Wiring},
      {"RegisterListeners", "", &World::RegisterListeners},
      {"UnregisterListeners", "", &World::UnregisterListeners, 2},
      {"Disable", "e3", &World::Disable, 6, Wiring},
      {"Enable", "e3b2", &World::Enable, 10},
      {"DisableAll", "", &World::DisableAll, 3, Wiring},
      {"EnableAll", "b2", &World::EnableAll, 5},
      {"Hold", "h2e3", &World::Hold, 4, Wiring},
      {"EndHold", "h2b2", &World::EndHold, 5},
      {"AddHook", "k3", &World::AddHook, 8},
      {"RemoveHook", "k3", &World::RemoveHook, 2},
      {"DropEvents", "e3", &World::DropEvents, 2},
      {"DropEventsFrom", "o3", &World::DropEventsFrom, 2},
      {"SetHandler", "b2", &World::SetHandler, 2},
      {"TakeFailure", "", &World::TakeFailure},
      {"Release", "", &World::Release, 4},
      {"When", "x5s5m3", &World::When, 24},
      {"Throw", "", &World::Throw, 6, Wiring},
  };
}

inline constexpr std::array<std::string_view, 5> eventPoints = {"heard", "mapped", "initialised",
                                                                "own", "hooked"};

}  // namespace DataBinding::Stress

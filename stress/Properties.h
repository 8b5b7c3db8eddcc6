// SPDX-License-Identifier: Apache-2.0
/// The operations of the scripts of properties and binds, and the names that they use.
#pragma once

#include <array>
#include <string_view>

#include "Script.h"

namespace DataBinding::Stress {

inline constexpr int scopeCount = 3;  // one within the other
inline constexpr int mostSources = 7;
inline constexpr int batchCount = 3;
inline constexpr int monitorCount = 4;
inline constexpr int earCount = 2;
inline constexpr int joinCount = 2;

inline constexpr const wchar_t* kindNames[] = {L"One", L"Two"};
/// A and B are set, and C is their sum. D is the sum of C and of the B and the D of a source that
/// was made before, if there is one.
inline constexpr const wchar_t* memberNames[] = {L"A", L"B", L"C", L"D"};
enum Member { A, B, C, D };
inline constexpr int memberCount = 4;
inline constexpr int refused = 3;  // by A

template <class World>
std::vector<Operation<World>> PropertyOperations() {
  using enum Place;
  return {
      {"Make", "n2o3s9", &World::Make, 12},
      {"TakeSource", "s9", &World::TakeSource, 3},
      {"EndSource", "s9", &World::EndSource, 4},
      {"OpenScope", "o3", &World::OpenScope, 8},
      {"EndScope", "o3", &World::EndScope, 2},
      {"Set", "s9p4v6", &World::Set, 30, Wiring},
      {"OpenBatch", "b3s9", &World::OpenBatch, 10, Wiring},
      {"CloseBatch", "b3", &World::CloseBatch, 12, Wiring},
      {"Watch", "w4s9p4", &World::Watch, 12, Wiring},
      {"Bind", "o3n2p4", &World::Bind, 9, Wiring},
      {"EndBind", "", &World::EndBind, 2, Wiring},
      {"Hear", "e2", &World::Hear, 8, Wiring},
      {"Join", "j2", &World::Join, 10, Wiring},
      {"Commit", "j2v6", &World::Commit, 14, Wiring},
      {"EndJoin", "j2", &World::EndJoin, 2, Wiring},
      {"When", "x4y4m3", &World::When, 24},
  };
}

inline constexpr std::array<std::string_view, 4> propertyPoints = {"called", "heard", "wrote",
                                                                   "changed"};

}  // namespace DataBinding::Stress

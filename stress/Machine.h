// SPDX-License-Identifier: Apache-2.0
/// What the program asks of the machine that it runs on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace DataBinding::Stress {

/// The seed that is being tried, for the process that looks at what has become of its child.
std::uint32_t& CurrentSeed();

/// Runs something and says whether it answered true: in a child process, so that a crash is a
/// failure like a wrong answer; where that is asked for, one that prints nothing and has some
/// seconds only. On Windows it runs in this process, and a crash ends the program with its seed.
bool Succeeds(bool quietly, const std::function<bool()>& run);

struct Memory {
  std::size_t inUse;
  std::size_t resident;
};
[[nodiscard]] Memory MemoryNow();

}  // namespace DataBinding::Stress

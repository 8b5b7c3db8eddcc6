// SPDX-License-Identifier: Apache-2.0
/// The functions of the operating system that the program needs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace DataBinding::Stress {

/// The seed that is being tried. It lies where a process can read it after its child has crashed.
std::uint32_t& CurrentSeed();

/// Runs a function and gives its answer. The function runs in a child process, so that a crash
/// counts as the answer false; if asked for, the child prints nothing and has only some seconds. On
/// Windows the function runs in this process, and a crash ends the program, which prints the seed.
bool Succeeds(bool quietly, const std::function<bool()>& run);

struct Memory {
  std::size_t inUse;
  std::size_t resident;
};
[[nodiscard]] Memory MemoryNow();

}  // namespace DataBinding::Stress

// SPDX-License-Identifier: Apache-2.0
// psapi.h needs what windows.h declares.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "Machine.h"

namespace DataBinding::Stress {

std::uint32_t& CurrentSeed() {
  static std::uint32_t seed = 0;
  return seed;
}

bool Succeeds(bool /*quietly*/, const std::function<bool()>& run) {
  const auto crash = [](int) {
    std::printf("seed %u ends the program\n", CurrentSeed());
    std::fflush(stdout);
    std::_Exit(1);
  };
  std::signal(SIGABRT, crash);
  std::signal(SIGSEGV, crash);
  return run();
}

Memory MemoryNow() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                       sizeof counters);
  return {counters.PrivateUsage, counters.WorkingSetSize};
}

}  // namespace DataBinding::Stress

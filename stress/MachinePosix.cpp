// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "Machine.h"

namespace DataBinding::Stress {

constexpr unsigned longestTrial = 20;  // seconds

std::uint32_t& CurrentSeed() {
  static void* const page = mmap(nullptr, sizeof(std::uint32_t), PROT_READ | PROT_WRITE,
                                 MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return *static_cast<std::uint32_t*>(page);
}

bool Succeeds(bool quietly, const std::function<bool()>& run) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    if (quietly) {
      alarm(longestTrial);
      static_cast<void>(!std::freopen("/dev/null", "w", stdout));
      static_cast<void>(!std::freopen("/dev/null", "w", stderr));
    }
    const bool succeeded = run();
    std::fflush(stdout);
    if (quietly || !succeeded) _exit(succeeded ? 0 : 1);
    std::exit(0);  // with a check for leaks, where there is one
  }
  int status = 1;
  return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

Memory MemoryNow() {
  std::size_t pages[2] = {};
  std::ifstream("/proc/self/statm") >> pages[0] >> pages[1];
  return {mallinfo2().uordblks, pages[1] * static_cast<std::size_t>(sysconf(_SC_PAGESIZE))};
}

}  // namespace DataBinding::Stress

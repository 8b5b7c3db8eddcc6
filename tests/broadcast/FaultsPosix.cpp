// SPDX-License-Identifier: Apache-2.0
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "Faults.h"

namespace DataBinding {

namespace {

void* forbiddenPage;

void Touch(char* memory) { *static_cast<volatile char*>(memory) = 1; }

}  // namespace

void AccessForbiddenMemory() {
  static auto* page =
      static_cast<char*>(mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  forbiddenPage = page;
  Touch(page);
}

namespace {

void AccessPastTheEndOfAFile() {
  FILE* empty = std::tmpfile();
  auto* page =
      static_cast<char*>(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, fileno(empty), 0));
  std::fclose(empty);
  Touch(page);
}

#if defined(__x86_64__)  // elsewhere dividing by zero is no fault
void DivideByZero() {
  asm volatile("xorl %%ecx, %%ecx; movl $1, %%eax; cltd; idivl %%ecx" ::: "eax", "ecx", "edx");
}
#endif

}  // namespace

#if defined(__aarch64__)
void RunAnIllegalInstruction() { asm volatile("udf #0"); }  // __builtin_trap is SIGTRAP there
#else
void RunAnIllegalInstruction() { __builtin_trap(); }
#endif

void ExitOnFaults(int code) {
  static int exitCode;
  exitCode = code;
  signal(SIGILL, [](int) { _exit(exitCode); });
  struct sigaction detailed {};
  detailed.sa_flags = SA_SIGINFO;
  detailed.sa_sigaction = [](int, siginfo_t* info, void* context) {
    const bool isToldAll = context != nullptr && info->si_addr == forbiddenPage;
    _exit(isToldAll ? exitCode : 1);
  };
  sigaction(SIGSEGV, &detailed, nullptr);
}

const std::vector<Fault>& AllFaults() {
  static const std::vector<Fault> faults = [] {
    std::vector<Fault> all{{&AccessForbiddenMemory, SIGSEGV},
                           {&AccessPastTheEndOfAFile, SIGBUS},
                           {&RunAnIllegalInstruction, SIGILL}};
#if defined(__x86_64__)
    all.push_back({&DivideByZero, SIGFPE});
#endif
    return all;
  }();
  return faults;
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include "Faults.h"

namespace DataBinding {

namespace {

void DivideByZero() {
  asm volatile("xorl %%ecx, %%ecx; movl $1, %%eax; cltd; idivl %%ecx" ::: "eax", "ecx", "edx");
}

void RaiseOwnException() { RaiseException(0xE0001234, 0, 0, nullptr); }

}  // namespace

void AccessForbiddenMemory() {
  static auto* page = static_cast<char*>(VirtualAlloc(nullptr, 4096, MEM_RESERVE, PAGE_NOACCESS));
  *static_cast<volatile char*>(page) = 1;
}

void RunAnIllegalInstruction() { __builtin_trap(); }

void ExitOnFaults(int code) {
  static UINT exitCode;
  exitCode = static_cast<UINT>(code);
  SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { ExitProcess(exitCode); });
}

const std::vector<Fault>& AllFaults() {
  static const std::vector<Fault> faults{{&AccessForbiddenMemory, EXCEPTION_ACCESS_VIOLATION},
                                         {&RaiseOwnException, 0xE0001234},
                                         {&DivideByZero, EXCEPTION_INT_DIVIDE_BY_ZERO},
                                         {&RunAnIllegalInstruction, EXCEPTION_ILLEGAL_INSTRUCTION}};
  return faults;
}

}  // namespace DataBinding

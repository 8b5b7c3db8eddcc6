// SPDX-License-Identifier: Apache-2.0
/// Ways to fault, and how the guard names them.
#pragma once

#include <vector>

namespace DataBinding {

struct Fault {
  void (*run)();
  unsigned code;
};
/// All that the processor can tell of.
const std::vector<Fault>& AllFaults();
void AccessForbiddenMemory();
void RunAnIllegalInstruction();
/// Has these two, where nobody else takes them, end the process with this code. On POSIX they go to
/// handlers of both kinds, and that for memory wants to be told the address.
void ExitOnFaults(int code);

}  // namespace DataBinding

/// Ways to fault, and how the guard names them.
#pragma once

#include <vector>

namespace DataBinding {

struct Fault {
  void (*run)();
  unsigned code;
};
/// Four of them.
const std::vector<Fault>& AllFaults();
void AccessForbiddenMemory();
void RunAnIllegalInstruction();
/// Has a fault that nobody else takes end the process with this code.
void ExitOnFaults(int code);

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// CatchState is the C++ runtime's record of the exceptions that a thread is handling.
///
/// A long jump out of a catch block would leave this record as it was inside the block. The code
/// that jumps therefore keeps a copy from before and puts it back.
#pragma once

#include <cxxabi.h>

#if defined(_LIBCPPABI_VERSION)
namespace __cxxabiv1 {
// The ABI specifies this function, and the C++ library has it, but its header does not declare it.
extern "C" void* __cxa_get_globals() noexcept;
}  // namespace __cxxabiv1
#endif

namespace DataBinding::details {

/// Has the layout that the Itanium C++ ABI specifies (2.2.2).
struct CatchState {
  void* caught;
  unsigned int uncaughtCount;

  static CatchState& OfThread() noexcept {
    static constinit thread_local CatchState* ofThread = nullptr;
    if (ofThread == nullptr) ofThread = reinterpret_cast<CatchState*>(abi::__cxa_get_globals());
    return *ofThread;
  }
};

}  // namespace DataBinding::details

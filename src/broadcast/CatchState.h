// SPDX-License-Identifier: Apache-2.0
/// The runtime's record of the exceptions that a thread is handling. A jump out of a catch block
/// leaves it as it was inside: whoever jumps keeps a copy and puts it back.
#pragma once

#include <cxxabi.h>

#if defined(_LIBCPPABI_VERSION)
namespace __cxxabiv1 {
// The ABI lays this function down, and the C++ library has it; its header just does not say so.
extern "C" void* __cxa_get_globals() noexcept;
}  // namespace __cxxabiv1
#endif

namespace DataBinding::details {

/// Laid out by the Itanium C++ ABI (2.2.2).
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

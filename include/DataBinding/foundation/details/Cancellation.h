// SPDX-License-Identifier: Apache-2.0
/// Lets a thread's cancellation through a catch block that would hold everything back.
///
/// On glibc pthread_cancel and pthread_exit unwind the thread as an exception that must go on;
/// whoever swallows it ends the process. libc++ has no name for that exception, so a cancellation
/// that reaches such a block ends the process there. Write the macro between a try block and its
/// catch (...):
///
///   try { Run(); } DATABINDING_PASS_CANCELLATION catch (...) { Note(); }
#pragma once

#include <cstddef>

#if defined(__GLIBCXX__) && !defined(_WIN32)
#include <cxxabi.h>

#define DATABINDING_PASS_CANCELLATION   \
  catch (const abi::__forced_unwind&) { \
    throw;                              \
  }
/// For a function with such a catch: it binds a reference to nothing, as the runtime means it.
#define DATABINDING_CATCHES_CANCELLATION __attribute__((no_sanitize("null")))
#else
#define DATABINDING_PASS_CANCELLATION
#define DATABINDING_CATCHES_CANCELLATION
#endif

// SPDX-License-Identifier: Apache-2.0
/// The macro of this header lets the cancellation of a thread pass a catch block that catches
/// everything.
///
/// On glibc, pthread_cancel and pthread_exit unwind the thread by an exception. Code that swallows
/// this exception ends the process. libc++ has no name for it, so with libc++ a cancellation that
/// reaches such a catch block ends the process. Write the macro between a try block and its
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
/// Marks a function that uses the macro above. The runtime deliberately throws the exception of a
/// cancellation without an object, and the sanitizer would report the null reference in the catch;
/// in a function into which this one is inlined it does so all the same.
#if defined(__SANITIZE_ADDRESS__)
#define DATABINDING_CATCHES_CANCELLATION __attribute__((no_sanitize("null"), noinline))
#else
#define DATABINDING_CATCHES_CANCELLATION __attribute__((no_sanitize("null")))
#endif
#else
#define DATABINDING_PASS_CANCELLATION
#define DATABINDING_CATCHES_CANCELLATION
#endif

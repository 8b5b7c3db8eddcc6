// SPDX-License-Identifier: Apache-2.0
/// Marks what the shared library exports.
///
/// DATABINDING_BUILD is defined while the library itself is built, DATABINDING_STATIC when it is
/// built and used as a static library. Everything not marked stays hidden. The export macro goes on
/// classes with out-of-line virtual operations and on free functions, never on explicit
/// instantiations of templates, where g++ ignores it.
#pragma once

/// @def DATABINDING_API
/// Exports from the shared library what it marks; imports it wherever that is used.
#if defined(DATABINDING_STATIC)
#define DATABINDING_API
#elif defined(_WIN32)
#if defined(DATABINDING_BUILD)
#define DATABINDING_API __declspec(dllexport)
#else
#define DATABINDING_API __declspec(dllimport)
#endif
#else
#define DATABINDING_API __attribute__((visibility("default")))
#endif

/// Makes a template's type one and the same in all modules, so that what one module throws is
/// caught in another. libc++ needs it, which tells types apart by where their descriptions lie.
#if defined(__clang__) && !defined(_WIN32)
#define DATABINDING_SHARED_TYPE __attribute__((type_visibility("default")))
#else
#define DATABINDING_SHARED_TYPE
#endif

/// Marks an inline function of which every module keeps a copy of its own.
#if defined(_WIN32)
#define DATABINDING_MODULE_LOCAL
#else
#define DATABINDING_MODULE_LOCAL __attribute__((visibility("hidden")))
#endif

/// Starts a function at a cache line, so that its short loop does not straddle two.
#if defined(__GNUC__)
#define DATABINDING_HOT_LOOP __attribute__((aligned(64)))
#else
#define DATABINDING_HOT_LOOP
#endif

/// Expands to Clang's thread-safety attributes; other compilers see nothing.
#if defined(__clang__)
#define DATABINDING_THREAD_ANNOTATION(...) __attribute__((__VA_ARGS__))
#else
#define DATABINDING_THREAD_ANNOTATION(...)
#endif
/// A member that is used under that lock only.
#define DATABINDING_GUARDED_BY(lock) DATABINDING_THREAD_ANNOTATION(guarded_by(lock))
/// A function that is called with the lock held alone.
#define DATABINDING_REQUIRES(...) DATABINDING_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// A function that is called with the lock held, if only with others.
#define DATABINDING_REQUIRES_SHARED(...) \
  DATABINDING_THREAD_ANNOTATION(requires_shared_capability(__VA_ARGS__))
/// A function that takes the lock itself and is called without it.
#define DATABINDING_EXCLUDES(...) DATABINDING_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

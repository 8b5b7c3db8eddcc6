// SPDX-License-Identifier: Apache-2.0
/// A CriticalSection is a recursive lock for short sections of code. A thread that has to wait
/// spins for a while before it blocks.
///
/// The thread that holds the section may enter it again, and has to leave it as often. Use the
/// scope guard to enter. On Windows this is the system's critical section with a spin count;
/// elsewhere it is an atomic variable, which a thread looks at as often as that before it waits.
///
///   const CriticalSectionLock guard(section);
#pragma once

#include "DataBinding/Export.h"

#if defined(_WIN32)
#include <cstddef>
#else
#include <atomic>
#include <cstdint>
#include <thread>
#endif

namespace VtrUtils {

class DATABINDING_API DATABINDING_THREAD_ANNOTATION(capability("mutex")) CriticalSection {
 public:
  /// How often a thread looks whether the section is free before it blocks.
  static constexpr unsigned spinCount = 4000;

  CriticalSection();
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;
#if defined(_WIN32)
  ~CriticalSection();
#else
  ~CriticalSection() = default;
#endif

  /// Waits until the section is free, unless this thread holds it already.
  void Enter() DATABINDING_THREAD_ANNOTATION(acquire_capability());
  /// Enters if the section is free or this thread holds it already, and returns whether it entered.
  [[nodiscard]] bool TryEnter() DATABINDING_THREAD_ANNOTATION(try_acquire_capability(true));
  /// Undoes one entry of this thread. The last Leave frees the section for other threads.
  void Leave() DATABINDING_THREAD_ANNOTATION(release_capability());

 private:
#if defined(_WIN32)
  alignas(void*) std::byte section[sizeof(void*) == 8 ? 40 : 24];
#else
  enum class State : std::uint32_t { Free, Held, Awaited };

  std::atomic<State> state{State::Free};
  std::atomic<std::thread::id> holder{};
  std::uint32_t depth = 0;  // entries beyond the first, counted by the holder
#endif
};

/// Holds a section from its construction to the end of its scope.
class DATABINDING_THREAD_ANNOTATION(scoped_lockable) CriticalSectionLock {
 public:
  /// Enters. The section must outlive the guard.
  [[nodiscard]] explicit CriticalSectionLock(CriticalSection& section)
      DATABINDING_THREAD_ANNOTATION(acquire_capability(section))
      : held(section) {
    held.Enter();
  }
  CriticalSectionLock(const CriticalSectionLock&) = delete;
  CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;
  ~CriticalSectionLock() DATABINDING_THREAD_ANNOTATION(release_capability()) { held.Leave(); }

 private:
  CriticalSection& held;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::CriticalSection;
using VtrUtils::CriticalSectionLock;
}  // namespace DataBinding

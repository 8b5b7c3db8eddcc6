// SPDX-License-Identifier: Apache-2.0
/// A recursive lock for short sections: tries, spins for a while, and only then blocks.
///
/// The thread that holds it may enter again and leaves as often. The system's own critical section
/// on Windows, with its spin count; elsewhere a word that is tried, watched up to that often, and
/// then waited for.
/// Entered through its scope guard.
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
  /// Enters if that takes no waiting, and says whether it did.
  [[nodiscard]] bool TryEnter() DATABINDING_THREAD_ANNOTATION(try_acquire_capability(true));
  /// Undoes one entry of this thread; the last one lets others in.
  void Leave() DATABINDING_THREAD_ANNOTATION(release_capability());

 private:
#if defined(_WIN32)
  alignas(void*) std::byte section[sizeof(void*) == 8 ? 40 : 24];
#else
  enum class State : std::uint32_t { Free, Held, Awaited };

  std::atomic<State> state{State::Free};
  std::atomic<std::thread::id> owner{};
  std::uint32_t depth = 0;  // entries beyond the first, counted by the owner
#endif
};

/// Holds a section for the guard's scope, however that is left.
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

// SPDX-License-Identifier: Apache-2.0
/// A OneThread checks that only one thread at a time is inside a piece of the library. Another
/// thread may be inside later.
///
/// Debug builds of the library assert it; other builds do nothing. A thread may enter again while
/// it is inside. The OneThread must outlive the visits.
#pragma once

#include <atomic>
#include <cassert>
#include <cstdint>
#include <thread>

namespace DataBinding::details {

class OneThread {
 public:
#if !defined(NDEBUG)
  void Enter() noexcept {
    const auto self = std::this_thread::get_id();
    std::thread::id nobody;
    const bool isFirst = inside.compare_exchange_strong(nobody, self);
    assert((isFirst || nobody == self) && "two threads deliver or subscribe at the same time");
    ++depth;
  }
  void Leave() noexcept {
    if (--depth == 0) inside.store({});
  }

 private:
  std::atomic<std::thread::id> inside;
  std::uint32_t depth = 0;
#else
  void Enter() noexcept {}
  void Leave() noexcept {}
#endif
};

/// The thread is inside for the life of this object.
class OneThreadVisit {
 public:
  explicit OneThreadVisit(OneThread& visited) noexcept : thread(visited) { thread.Enter(); }
  OneThreadVisit(const OneThreadVisit&) = delete;
  OneThreadVisit& operator=(const OneThreadVisit&) = delete;
  ~OneThreadVisit() { thread.Leave(); }

 private:
  OneThread& thread;
};

}  // namespace DataBinding::details

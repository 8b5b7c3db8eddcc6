// SPDX-License-Identifier: Apache-2.0
/// The memory of raised events.
///
/// Each thread keeps the blocks of events that ended on it, up to a bound, for the next ones that
/// it raises: a thread that both raises and delivers asks the heap for nothing once it has run for
/// a while. A block may end on another thread than the one that took it. Large or specially aligned
/// blocks, what a thread keeps when it ends, and on Windows all of them go to the heap. Taking one
/// throws std::bad_alloc; giving one back throws nothing. Any thread; no locks. AppEvent is its
/// user.
#pragma once

#include <cstddef>
#include <memory>

#include "DataBinding/Export.h"

namespace DataBinding::details {

[[nodiscard]] DATABINDING_API void* TakeEventMemory(std::size_t bytes);
/// Takes back what TakeEventMemory gave for as many bytes.
DATABINDING_API void ReturnEventMemory(void* block, std::size_t bytes) noexcept;

/// For std::allocate_shared.
template <class T>
struct EventAllocator {
  using value_type = T;

  EventAllocator() noexcept = default;
  template <class U>
  EventAllocator(const EventAllocator<U>&) noexcept {}

  // NOLINTBEGIN(readability-identifier-naming): what allocators are asked for
  [[nodiscard]] T* allocate(std::size_t count) {
    if constexpr (isOverAligned) return std::allocator<T>().allocate(count);
    return static_cast<T*>(TakeEventMemory(count * sizeof(T)));
  }
  void deallocate(T* block, std::size_t count) noexcept {
    if constexpr (isOverAligned) return std::allocator<T>().deallocate(block, count);
    ReturnEventMemory(block, count * sizeof(T));
  }
  // NOLINTEND(readability-identifier-naming)
  friend bool operator==(const EventAllocator&, const EventAllocator&) noexcept { return true; }

 private:
  static constexpr bool isOverAligned = alignof(T) > __STDCPP_DEFAULT_NEW_ALIGNMENT__;
};

}  // namespace DataBinding::details

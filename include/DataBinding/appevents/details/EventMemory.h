// SPDX-License-Identifier: Apache-2.0
/// This header holds where the memory of raised events comes from.
///
/// A thread keeps the memory blocks of events that end on it, up to a bound, for events that it
/// raises later. A thread that both raises and delivers therefore needs nothing from the heap once
/// it has run for a while. A block may be given back on another thread than the one that took it.
///
/// Large or specially aligned blocks come from the heap and go back to it. So do all blocks on
/// Windows, and the blocks that a thread still keeps when it ends. Any thread may call these
/// functions, which take no locks. AppEvent uses them.
#pragma once

#include <cstddef>
#include <memory>

#include "DataBinding/Export.h"

namespace DataBinding::details {

/// Gives a block of at least as many bytes. Throws std::bad_alloc.
[[nodiscard]] DATABINDING_API void* TakeEventMemory(std::size_t bytes);
/// Takes back a block that TakeEventMemory gave for as many bytes.
DATABINDING_API void ReturnEventMemory(void* block, std::size_t bytes) noexcept;

/// The allocator by which std::allocate_shared uses this memory.
template <class T>
struct EventAllocator {
  using value_type = T;

  EventAllocator() noexcept = default;
  template <class U>
  EventAllocator(const EventAllocator<U>&) noexcept {}

  // NOLINTBEGIN(readability-identifier-naming): the names that an allocator must have
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

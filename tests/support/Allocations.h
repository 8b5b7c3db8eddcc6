// SPDX-License-Identifier: Apache-2.0
/// Counts the allocations of a test executable and of the library, and makes one of them fail.
///
/// Executables that link the target test_allocations have their operators new and delete replaced.
/// Each thread has its own figures and its own failure.
#pragma once

#include <cstdint>

namespace DataBinding::Testing {

/// How often this thread has allocated.
[[nodiscard]] std::int64_t Allocations() noexcept;
/// The same less what it has given back.
[[nodiscard]] std::int64_t LiveAllocations() noexcept;

/// How many bytes this thread has allocated, with what a usual heap adds to each block.
[[nodiscard]] std::int64_t AllocatedBytes() noexcept;

/// While it lives, the n-th allocation of this thread from its making on throws std::bad_alloc.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::int64_t number) noexcept;
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();

  [[nodiscard]] static bool HasFailed() noexcept;
};

}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include "Allocations.h"

#include <cstdlib>
#include <new>

namespace DataBinding::Testing {

namespace {

constinit thread_local std::int64_t allocated = 0;
constinit thread_local std::int64_t released = 0;
constinit thread_local std::int64_t bytes = 0;
constinit thread_local std::int64_t untilFailure = 0;  // 0 for none, below it when it is over

void* Allocate(std::size_t size) {
  if (untilFailure > 0 && --untilFailure == 0) {
    untilFailure = -1;
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++allocated;
  bytes += static_cast<std::int64_t>(size < 24 ? 32 : (size + 8 + 15) / 16 * 16);
  return memory;
}

void Release(void* memory) noexcept {
  if (memory != nullptr) ++released;
  std::free(memory);
}

}  // namespace

std::int64_t Allocations() noexcept { return allocated; }
std::int64_t LiveAllocations() noexcept { return allocated - released; }

std::int64_t AllocatedBytes() noexcept { return bytes; }

FailingAllocation::FailingAllocation(std::int64_t number) noexcept { untilFailure = number; }
FailingAllocation::~FailingAllocation() { untilFailure = 0; }
bool FailingAllocation::HasFailed() noexcept { return untilFailure < 0; }

}  // namespace DataBinding::Testing

using DataBinding::Testing::Allocate;
using DataBinding::Testing::allocated;
using DataBinding::Testing::Release;

// All that sanitizers would otherwise answer with allocators of their own.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
#if !defined(_WIN32)  // there a library's own allocations are not seen
void* operator new(std::size_t size, std::align_val_t alignment,
                   const std::nothrow_t& /*tag*/) noexcept {
  ++allocated;
  return std::aligned_alloc(static_cast<std::size_t>(alignment), size);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { Release(memory); }
#endif
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { Release(memory); }

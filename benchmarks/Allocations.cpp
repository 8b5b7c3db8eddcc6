// SPDX-License-Identifier: Apache-2.0
#include "Allocations.h"

#include <cstdlib>
#include <new>

namespace Benchmarks {

namespace {

constinit thread_local std::uint64_t allocations = 0;

void* Counted(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  ++allocations;
  return memory;
}

}  // namespace

std::uint64_t Allocations() noexcept { return allocations; }

}  // namespace Benchmarks

// NOLINTBEGIN(cppcoreguidelines-no-malloc): containers allocate with these operators

void* operator new(std::size_t size) {
  return Benchmarks::Counted(std::malloc(size == 0 ? 1 : size));
}

void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto boundary = static_cast<std::size_t>(alignment);
  return Benchmarks::Counted(std::aligned_alloc(boundary, (size + boundary - 1) & -boundary));
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}

// NOLINTEND(cppcoreguidelines-no-malloc)

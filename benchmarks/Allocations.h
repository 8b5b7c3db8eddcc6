// SPDX-License-Identifier: Apache-2.0
/// Counts the allocations of a benchmark, by replacing the operators new of the whole process.
#pragma once

#include <cstdint>

#include <benchmark/benchmark.h>

namespace Benchmarks {

/// How often this thread has allocated so far.
[[nodiscard]] std::uint64_t Allocations() noexcept;

/// Counts the allocations while it lives, and reports them for each iteration as the counter
/// `allocations`.
class AllocationWatch {
 public:
  explicit AllocationWatch(benchmark::State& watched) : state(watched), before(Allocations()) {}
  AllocationWatch(const AllocationWatch&) = delete;
  AllocationWatch& operator=(const AllocationWatch&) = delete;
  ~AllocationWatch() {
    const auto count = static_cast<double>(Allocations() - before);
    state.counters["allocations"] = {count, benchmark::Counter::kAvgIterations};
  }

 private:
  benchmark::State& state;
  std::uint64_t before;
};

}  // namespace Benchmarks

// SPDX-License-Identifier: Apache-2.0
#include "Memory.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Benchmarks {

std::size_t HeapInUse() noexcept {
#ifdef __GLIBC__
  const auto account = mallinfo2();
  return account.uordblks + account.hblkhd;
#else
  return 0;
#endif
}

namespace {

template <class T>
double Pointers() {
  return static_cast<double>(sizeof(T)) / sizeof(void*);
}

/// The bytes that a broadcaster adds to the object that it is a member of.
void Sizes(benchmark::State& state) {
  for (auto _ : state) {
    state.counters["holder"] = Pointers<DataBinding::details::Broadcaster>();
    state.counters["object"] = Pointers<Announcer>();
  }
}

BENCHMARK(Sizes)->Name("memory/sizes")->Iterations(1);

}  // namespace

}  // namespace Benchmarks

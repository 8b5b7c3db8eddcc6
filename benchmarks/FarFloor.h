// SPDX-License-Identifier: Apache-2.0
/// The loop of Floor in a module of its own, linked as the library is.
///
/// Where a processor's branch predictor keeps short distances only, a call into another module
/// costs more than one within a module. The library pays that for each listener of an application;
/// this loop pays it too.
#pragma once

#include <cstddef>

namespace Benchmarks {

struct FloorEntry {
  void (*run)(void* context);
  void* context;
};

void RunFromAfar(const FloorEntry* entries, std::size_t count);

}  // namespace Benchmarks

// SPDX-License-Identifier: Apache-2.0
/// The loop of Floor in a module of its own, which is linked as the library is.
///
/// Some processors' branch predictors keep short distances only, so that a call into another module
/// costs more than a call within a module. The library pays that for each listener of an
/// application, and this loop pays it, too.
#pragma once

#include <cstddef>

namespace Benchmarks {

struct FloorEntry {
  void (*run)(void* context);
  void* context;
};

void RunFromAfar(const FloorEntry* entries, std::size_t count);

}  // namespace Benchmarks

// SPDX-License-Identifier: Apache-2.0
#include "FarFloor.h"

namespace Benchmarks {

void RunFromAfar(const FloorEntry* entries, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) entries[i].run(entries[i].context);
}

}  // namespace Benchmarks

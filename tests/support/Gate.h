// SPDX-License-Identifier: Apache-2.0
/// Lets threads go on together, any number of times. It watches instead of sleeping: the condition
/// variable behind MinGW's std::barrier may miss its wake-up.
#pragma once

#include <atomic>
#include <thread>

namespace DataBinding::Testing {

class Gate {
 public:
  explicit Gate(int threads) : count(threads) {}
  void ArriveAndWait() {
    const int full = (arrived++ / count + 1) * count;
    while (arrived < full) std::this_thread::yield();
  }

 private:
  const int count;
  std::atomic<int> arrived{0};
};

}  // namespace DataBinding::Testing

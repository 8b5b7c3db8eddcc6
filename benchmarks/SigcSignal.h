// SPDX-License-Identifier: Apache-2.0
/// libsigc++ in the place of the library's broadcaster. Its signals know nothing of threads.
#pragma once

#include <sigc++/sigc++.h>

#include <string>

#include "Peers.h"

namespace Benchmarks {

struct SigcConnection {
  sigc::connection link;
  void End() { link.disconnect(); }
};

class SigcSignal {
 public:
  using Name = std::wstring;
  using Handle = Scoped<SigcConnection>;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = false;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    return Handle({signal.connect(listener)});
  }
  void Emit(const Name& /*name*/) { signal.emit(); }
  [[nodiscard]] bool Heard(const Name& /*name*/) const { return !signal.empty(); }

 private:
  sigc::signal<void()> signal;
};

}  // namespace Benchmarks

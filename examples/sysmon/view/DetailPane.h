// SPDX-License-Identifier: Apache-2.0
/// Everything that the sources of one scope publish, live, whatever it is: sources are listed by
/// the registrar, their properties by reflection.
#pragma once

#include "Surface.h"
#include "Watch.h"

namespace Sysmon {

class DetailPane {
 public:
  explicit DetailPane(IDataSourceProvider& scope);

  void Draw(Surface& surface, const Area& area);
  /// Draws everything the next time.
  void Invalidate() { isShown = false; }
  /// True once the scope has ended; the pane goes on showing its last state.
  [[nodiscard]] bool IsEnded() const { return watch.Scope() == nullptr; }

 private:
  Watch watch;
  bool isShown = false;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// Shows all properties of all sources of one scope, and follows their changes. The registrar lists
/// the sources and reflection lists their properties, so the pane knows no names.
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

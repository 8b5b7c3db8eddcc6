// SPDX-License-Identifier: Apache-2.0
/// Shows all that is known of one process, and follows its changes. Reflection lists the properties
/// of its sources, so the pane does not know their names.
#pragma once

#include "ProcessScope.h"
#include "Surface.h"
#include "Watch.h"

namespace Sysmon {

class DetailPane {
 public:
  DetailPane(IDataSourceProvider& root, DataBinding::ReadableList<Process>& processes,
             DataBinding::RowId shownProcess);

  void Draw(Surface& surface, const Area& area);
  /// Draws everything the next time.
  void Invalidate() { isShown = false; }
  /// True once the process has ended.
  [[nodiscard]] bool IsEnded() const { return !process.HasProcess(); }

 private:
  ProcessScope process;
  Watch watch;
  bool isShown = false;
};

}  // namespace Sysmon

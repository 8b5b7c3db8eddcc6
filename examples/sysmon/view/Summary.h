// SPDX-License-Identifier: Apache-2.0
/// Shows the machine as a whole, in five lines, by a watch on the sources of the root scope.
#pragma once

#include "Surface.h"
#include "Watch.h"

namespace Sysmon {

class Summary {
 public:
  static constexpr int height = 5;

  explicit Summary(IDataSourceProvider& root);

  void Draw(Surface& surface, const Area& area);
  /// Draws everything the next time.
  void Invalidate() { isShown = false; }

 private:
  /// Watches the fields, and then the alarms of the fields that have one.
  Watch watch;
  bool isShown = false;
};

}  // namespace Sysmon

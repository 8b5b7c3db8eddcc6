// SPDX-License-Identifier: Apache-2.0
/// The machine as a whole, in five lines: a watch on the sources of the root scope.
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
  /// The fields, and then the alarms of those that have one.
  Watch watch;
  bool isShown = false;
};

}  // namespace Sysmon

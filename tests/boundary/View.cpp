// SPDX-License-Identifier: Apache-2.0
#include "Shared.h"

namespace Boundary {

using namespace DataBinding;

SetResult SetLevelInView(IDataSource* gauge, int level) {
  return SetProperty(gauge, L"Level", level);
}

Reading ReadLastInView(IDataSource* gauge) {
  const auto last = GetProperty<Reading>(gauge, L"Last");
  return last ? *last : Reading{-1, last.text};
}

IAppEventBroadcaster& BroadcasterOfView() { return IAppEventBroadcaster::GetInstance(); }
WAppEventRegistrar& RegistrarOfView() { return WAppEventRegistrar::GetInstance(); }

}  // namespace Boundary

// SPDX-License-Identifier: Apache-2.0
#include "AlarmSource.h"

namespace Sysmon {

DataBinding::RepeatingCallback<VtrString(const double&)> AlarmSource::UpTo(double most) {
  return [most](const double& limit) {
    if (limit > 0 && limit <= most) return VtrString();  // both are false for NaN
    return VtrString().Format(L"It must be above 0 and at most %.0f.", most);
  };
}

void AlarmSource::Mark(const VtrString& limit, bool isRaised) {
  for (auto* const property : {&cpuRaised, &memoryRaised, &loadRaised}) {
    if (property->Name() == limit + L"Raised") Assign(*property, isRaised);
  }
}

}  // namespace Sysmon

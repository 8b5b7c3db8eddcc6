// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/UpdatePolicy.h"

#include "DataBinding/appevents/WAppEventRegistrar.h"

namespace DataBinding::AEB {

namespace {
/// The callback is never destroyed, because threads may raise events while the process ends.
RepeatingCallback<void()>& UpdateUICallback() {
  static auto* callback = new RepeatingCallback<void()>;
  return *callback;
}
}  // namespace

void UpdatePolicy::PreNotify() { WAppEventRegistrar::GetInstance().FlushDelayInitList(); }

bool UpdatePolicy::PostUpdate() {
  UpdateUICallback()();
  return true;
}

void UpdatePolicy::SetUpdateUICallback(const RepeatingCallback<void()>& callback) {
  UpdateUICallback() = callback;
}

const RepeatingCallback<void()>& UpdatePolicy::GetUpdateUICallback() { return UpdateUICallback(); }

}  // namespace DataBinding::AEB

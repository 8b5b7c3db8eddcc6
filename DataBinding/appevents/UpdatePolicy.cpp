#include "DataBinding/UpdatePolicy.h"

#include "DataBinding/WAppEventRegistrar.h"

namespace DataBinding::AEB {

/// Never destroyed: threads may raise events while the process ends.
RepeatingCallback<void()>& UpdatePolicy::updateUICallback() {
  static auto* callback = new RepeatingCallback<void()>;
  return *callback;
}

void UpdatePolicy::PreNotify() { WAppEventRegistrar::GetInstance().FlushDelayInitList(); }

bool UpdatePolicy::PostUpdate() {
  updateUICallback()();
  return true;
}

void UpdatePolicy::SetUpdateUICallback(const RepeatingCallback<void()>& callback) {
  updateUICallback() = callback;
}

}  // namespace DataBinding::AEB

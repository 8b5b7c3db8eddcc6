// SPDX-License-Identifier: Apache-2.0
/// Guard runs a step that Qt has called, into which nothing may be thrown.
///
/// What the step throws goes to the failure handler (ListenerGuard.h), under a name. All rooms of
/// the adapter use it where a getter, a validator or a function of the application runs:
///
///   details::Guard(propertyName, [&] { shown = ToQString(*text.ReadText()); });
#pragma once

#include <exception>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::Qt6::details {

/// Returns false where the step has thrown. The step may end the object whose name this is, so the
/// name is a copy.
template <class Step>
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool Guard(VtrString name, const Step& step) {
  try {
    step();
    return true;
  } catch (...) {
    ReportListenerFailure(name, std::current_exception());
    return false;
  }
}

/// Returns what the operation answers, and a refusal where it has thrown.
template <class Operation>
SetResult GuardResult(const VtrString& name, const Operation& operation) {
  SetResult result{false, PropertyError::Refused, L"The operation has failed."};
  Guard(name, [&] { result = operation(); });
  return result;
}

}  // namespace DataBinding::Qt6::details

// SPDX-License-Identifier: Apache-2.0
/// Guard runs a step that Qt has called, into which nothing may be thrown.
///
/// The failure handler (ListenerGuard.h) is told of an exception of the step, under a name. All
/// rooms of the adapter use it where a getter, a validator or a function of the application runs:
///
///   details::Guard(propertyName, [&] { shown = ToQString(*text.ReadText()); });
#pragma once

#include <exception>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::Qt6::details {

/// Runs the step. The name is a literal, or a copy, since the step may end the object whose name it
/// is.
template <class Name, class Step>
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void Guard(Name name, const Step& step) {
  try {
    step();
  } catch (...) {
    ReportListenerFailure(VtrString(name), std::current_exception());
  }
}

/// Returns what is read, and nothing where that throws.
template <class Name, class Read>
auto GuardRead(Name name, const Read& read) -> decltype(read()) {
  try {
    return read();
  } catch (...) {
    ReportListenerFailure(VtrString(name), std::current_exception());
    return {};
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

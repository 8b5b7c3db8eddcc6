// SPDX-License-Identifier: Apache-2.0
/// Diagnose tells what every bind and listener of a scope tree shows, or why it shows nothing.
///
/// It serves a debug window or a log, when a label stays empty. It takes a snapshot of plain
/// values, builds no data source and changes nothing. Call it on one thread, that of the provider
/// tree.
///
///   for (const BindDiagnosis& each : Diagnose(*registrar.GetRootProvider())) {
///     if (!each.status.IsConnected()) Log(each.scopeName, each.status.text);
///   }
#pragma once

#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/BindStatus.h"

namespace DataBinding {

/// A BindDiagnosis describes one bind, one entry of a listener, or a list that did not come to
/// rest.
struct BindDiagnosis {
  /// Names the scope that the bind was given, or that has the list's source. The pointer is only to
  /// be compared, since the scope may be gone later.
  const IDataSourceProvider* scope = nullptr;
  /// Lists that scope's categories, separated by commas.
  VtrString scopeName;
  /// Holds the data source's name as the bind or the listener has it.
  VtrString source;
  /// Holds the property's or list's name or, for an event bind, the event's.
  VtrString property;
  /// Tells why the bind shows what it shows.
  Framework::BindStatus status;
};

/// Looks at the binds, event binds and DataListeners of a scope and the scopes within it. Outer
/// scopes come first; within each scope the rows stand in order of source and property. Each bind
/// stands with the scope that it was given, so a bind is left out if it has no scope or its scope
/// is not in the tree. Listeners of other kinds do not tell what they want and are left out. A
/// listener's entry counts as connected while its subscription stands; if the property is in no
/// list, the text says so.
///
/// A list whose callbacks have once changed it a thousand times within one operation has a row of
/// its own as long as it lives, in the state Restless, whether or not anything is bound to it. The
/// listener failure handler was told when that happened.
[[nodiscard]] DATABINDING_API std::vector<BindDiagnosis> Diagnose(IDataSourceProvider& provider);

}  // namespace DataBinding

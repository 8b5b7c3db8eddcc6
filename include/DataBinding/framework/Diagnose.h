// SPDX-License-Identifier: Apache-2.0
/// Diagnose: what every bind and listener of a scope tree shows, or why it shows nothing.
///
/// For a debug window or a log, when a label stays empty. Takes a snapshot of plain values; builds
/// no data source and changes nothing. One thread, that of the provider tree.
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

/// One bind, or one entry of a listener.
struct BindDiagnosis {
  /// The scope that it was given. To be compared; it may be gone later.
  const IDataSourceProvider* scope = nullptr;
  /// That scope's categories, separated by commas.
  VtrString scopeName;
  /// The data source's name as the bind or the listener has it.
  VtrString source;
  /// Of an event bind, the event's name.
  VtrString property;
  /// Why it shows what it shows.
  Framework::BindStatus status;
};

/// Looks at the binds, event binds and DataListeners of a scope and those within it, outer scopes
/// first, in each in order of source and property. Each stands with the scope that it was given, so
/// one that has no scope, or whose scope is not in the tree, cannot be found and is left out.
/// Listeners of other kinds do not tell what they want and are left out. A listener's entry counts
/// as connected while its subscription stands; if the property is in no list, the text says so.
[[nodiscard]] DATABINDING_API std::vector<BindDiagnosis> Diagnose(IDataSourceProvider& provider);

}  // namespace DataBinding

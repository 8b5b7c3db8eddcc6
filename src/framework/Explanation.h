// SPDX-License-Identifier: Apache-2.0
/// These functions tell why a bind or a listener does not show what it names.
///
/// They walk scopes and their sources, and look into the registrar, but never have a source built.
/// Since they walk, they serve people who ask, and are not called on each change. Call them on one
/// thread, that of the provider tree.
#pragma once

#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/BindStatus.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding::details {

/// A Wish holds what a bind or a listener looks for.
struct Wish {
  VtrString source;
  VtrString property;
  /// Hold the types under which the property may be filed; null stands for any type.
  const runtime_type_base* plain = nullptr;
  const runtime_type_base* readOnly = nullptr;
};

/// Returns true for a name that is neither empty nor the marker.
[[nodiscard]] bool IsNamed(const VtrString& name, const wchar_t* marker);
/// Tells whether the scope itself has a category. Unlike MatchCategory, it takes a comma for a
/// character of the name.
[[nodiscard]] bool HasCategory(const IDataSourceProvider& scope, const VtrString& category);

/// Returns the scope's categories, separated by commas.
[[nodiscard]] VtrString ScopeName(const IDataSourceProvider& scope);

[[nodiscard]] Framework::BindStatus ExplainUnbound(const VtrString& source);
[[nodiscard]] Framework::BindStatus ExplainNoScope(const Wish& wish);
[[nodiscard]] Framework::BindStatus ExplainNoContext(const Wish& wish, const VtrString& context);
/// Explains a bind that waits until scopes have called their listeners.
[[nodiscard]] Framework::BindStatus ExplainWaiting(const Wish& wish);
/// Explains why no source of that name is found, looking from a scope outward.
[[nodiscard]] Framework::BindStatus ExplainMissing(const Wish& wish, IDataSourceProvider& scope);
/// Tells whether the source that was found has the property.
[[nodiscard]] Framework::BindStatus ExplainFound(const Wish& wish, IDataSourceProvider& scope,
                                                 IDataSource& found);
/// Explains a property that is filed under its type, but with an accessor of another one.
[[nodiscard]] Framework::BindStatus ExplainUnreachable(const Wish& wish, IDataSource& found);
/// Explains a list whose callbacks have changed it too often.
[[nodiscard]] Framework::BindStatus ExplainRestless(const VtrString& source, const VtrString& list);
/// Explains a listener whose subscription stands, whatever the case of the source's name.
[[nodiscard]] Framework::BindStatus ExplainHeard(const Wish& wish, IDataSourceProvider& scope);

}  // namespace DataBinding::details

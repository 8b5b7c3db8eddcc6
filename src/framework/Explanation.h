// SPDX-License-Identifier: Apache-2.0
/// Tells why a bind or a listener does not show what it names.
///
/// Walks scopes and their sources, and looks into the registrar, but never has a source built; for
/// people who ask, not for every change. One thread, that of the provider tree.
#pragma once

#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/BindStatus.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding::details {

/// What is looked for.
struct Wish {
  VtrString source;
  VtrString property;
  /// The types under which the property may be filed; null where no property is explained.
  const runtime_type_base* plain = nullptr;
  const runtime_type_base* readOnly = nullptr;
};

/// True for a name that is meant to be one.
[[nodiscard]] bool IsNamed(const VtrString& name, const wchar_t* marker);
/// Whether the scope itself has a category. Unlike MatchCategory, takes a comma for a character.
[[nodiscard]] bool HasCategory(const IDataSourceProvider& scope, const VtrString& category);

/// The scope's categories, separated by commas.
[[nodiscard]] VtrString ScopeName(const IDataSourceProvider& scope);

[[nodiscard]] Framework::BindStatus ExplainUnbound(const VtrString& source);
[[nodiscard]] Framework::BindStatus ExplainNoScope(const Wish& wish);
[[nodiscard]] Framework::BindStatus ExplainNoContext(const Wish& wish, const VtrString& context);
/// Of a bind that waits until scopes have called their listeners.
[[nodiscard]] Framework::BindStatus ExplainWaiting(const Wish& wish);
/// Why no source of that name is found, looking from a scope outward.
[[nodiscard]] Framework::BindStatus ExplainMissing(const Wish& wish, IDataSourceProvider& scope);
/// Whether the source that was found has the property.
[[nodiscard]] Framework::BindStatus ExplainFound(const Wish& wish, IDataSourceProvider& scope,
                                                 IDataSource& found);
/// Of a property that is filed under its type, but with an accessor of another one.
[[nodiscard]] Framework::BindStatus ExplainUnreachable(const Wish& wish, IDataSource& found);
/// Of a listener whose subscription stands, whatever the case of the source's name.
[[nodiscard]] Framework::BindStatus ExplainHeard(const Wish& wish, IDataSourceProvider& scope);

}  // namespace DataBinding::details

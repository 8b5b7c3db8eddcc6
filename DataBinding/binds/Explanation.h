/// Tells why a bind or a listener does not show what it names.
///
/// Walks scopes and their sources, and looks into the registrar, but never has a source built; for
/// people who ask, not for every change. One thread, that of the provider tree.
#pragma once

#include "DataBinding/BindStatus.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/RuntimeType.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

/// What is looked for.
struct Wish {
  VtrString source;
  VtrString property;
  /// The types under which the property may be filed; null where any type will do.
  const runtime_type_base* plain = nullptr;
  const runtime_type_base* readOnly = nullptr;
};

/// True for a name that is meant to be one.
[[nodiscard]] bool IsNamed(const VtrString& name, const wchar_t* marker);

[[nodiscard]] Framework::BindStatus ExplainUnbound(const VtrString& source);
[[nodiscard]] Framework::BindStatus ExplainNoScope(const Wish& wish);
[[nodiscard]] Framework::BindStatus ExplainNoContext(const Wish& wish, const VtrString& context);
/// Why no source of that name is found, looking from a scope outward.
[[nodiscard]] Framework::BindStatus ExplainMissing(const Wish& wish, IDataSourceProvider& scope);
/// Whether the source that was found has the property.
[[nodiscard]] Framework::BindStatus ExplainFound(const Wish& wish, IDataSourceProvider& scope,
                                                 IDataSource& found);

}  // namespace DataBinding::details

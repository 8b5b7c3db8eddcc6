// SPDX-License-Identifier: Apache-2.0
// This file holds the texts that tell why a bind or a listener does not show what it names, and the
// looks into scopes, sources and the registrar that find the reason.

#include "Explanation.h"

#include <algorithm>

#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/framework/BindTypes.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/property/details/ShownRecord.h"
#include "DataBinding/registrar/IDataSourceConstructor.h"
#include "DataBinding/registrar/IDataSourceRegistrar.h"

namespace DataBinding::details {

namespace {

using State = Framework::BindStatus::State;
using Framework::BindStatus;

/// Calls visit(source, its name, its scope) for the sources that the scope and its enclosing ones
/// own. It skips sources that are just ending, also without the scope's knowledge.
template <class Visitor>
void VisitOwned(IDataSourceProvider& nearest, const Visitor& visit) {
  for (IDataSourceProvider* scope = &nearest; scope != nullptr; scope = scope->GetParent()) {
    scope->VisitDataSources([&](IDataSource& source) {
      if (ReflectionAccess::IsEnding(source)) return;
      if (const wchar_t* name = source.GetDataSourceName()) visit(source, VtrString(name), *scope);
    });
  }
}

/// Returns true when a scope would build the source if it were asked for it.
bool CanBeBuilt(const VtrString& name, IDataSourceProvider& nearest) {
  auto* constructor = IDataSourceRegistrar::GetInstance().FindConstructor(name);
  if (constructor == nullptr) return false;
  const wchar_t* categories = constructor->GetCategories();
  IDataSourceProvider* scope = &nearest;
  while (scope != nullptr && !scope->MatchCategory(categories)) scope = scope->GetParent();
  return scope != nullptr;
}

/// Returns a name that differs from the wanted one in case only, and that belongs to a source that
/// is there or could be built.
VtrString SimilarSource(const VtrString& wanted, IDataSourceProvider& nearest) {
  VtrString similar;
  VisitOwned(nearest, [&](const auto& /*source*/, const VtrString& name, const auto& /*scope*/) {
    if (name.CompareNoCase(wanted) == 0) similar = name;
  });
  if (!similar.IsEmpty()) return similar;
  for (const auto& name : nearest.GetRegisteredDataSources()) {
    if (name.CompareNoCase(wanted) == 0 && CanBeBuilt(name, nearest)) return name;
  }
  return similar;
}

VtrString SimilarProperty(const VtrString& wanted, IDataSource& source) {
  for (const auto& [name, item] : source) {
    if (name != wanted && name.CompareNoCase(wanted) == 0) return name;
  }
  return {};
}

VtrString InScope(const IDataSourceProvider* scope) {
  const VtrString name = scope == nullptr ? VtrString() : ScopeName(*scope);
  return name.IsEmpty() ? name : VtrString().Format(L" in scope \"%s\"", name);
}

/// Explains a source that its own scope does not find by its name.
BindStatus Displaced(const Wish& wish, const IDataSourceProvider& scope) {
  const bool isTaken = scope.GetLocalDataSourceInstance(wish.source) != nullptr;
  return {State::Shadowed,
          VtrString().Format(L"A data source \"%s\"%s cannot be found: another one %s.",
                             wish.source, InScope(&scope),
                             isTaken ? L"has its name" : L"had its name when it was added")};
}

/// Explains a source that would serve, but is hidden by another one that is found in its place.
BindStatus Hidden(const Wish& wish, const IDataSourceProvider& scope, IDataSourceProvider& nearest,
                  const IDataSource& found) {
  const IDataSourceProvider* nearer = &nearest;
  while (nearer != nullptr && nearer->GetLocalDataSourceInstance(wish.source) != &found) {
    nearer = nearer->GetParent();
  }
  return {State::Shadowed,
          VtrString().Format(L"A data source \"%s\"%s is hidden by a nearer one of that name%s.",
                             wish.source, InScope(&scope), InScope(nearer))};
}

bool HasProperty(IDataSource& source, const VtrString& name) {
  return !runtime_type<void>::Get().IsSameType(&source.GetDelegateType(name));
}

BindStatus NoSuchProperty(const Wish& wish, IDataSource& source) {
  const VtrString similar = SimilarProperty(wish.property, source);
  if (!similar.IsEmpty()) {
    return {State::CaseDiffers,
            VtrString().Format(L"Data source \"%s\" has no property \"%s\", but one named \"%s\".",
                               wish.source, wish.property, similar)};
  }
  return {State::NoProperty,
          ReflectionAccess::Explain(PropertyError::Absent, &source, wish.property, wish.plain)};
}

/// Tells whether this source has the property, without regard to other sources.
BindStatus ExplainProperty(const Wish& wish, IDataSource& source) {
  const auto found = wish.plain == nullptr ? ReflectionAccess::FindAny(&source, wish.property)
                                           : ReflectionAccess::Find(&source, wish.property,
                                                                    *wish.plain, *wish.readOnly);
  const auto explain = [&](PropertyError error) {
    return ReflectionAccess::Explain(error, &source, wish.property, wish.plain);
  };
  if (found.error == PropertyError::Absent) return NoSuchProperty(wish, source);
  if (found.error != PropertyError::None) return {State::WrongType, explain(found.error)};
  if (!found.HasAccessor()) return {State::WrongType, explain(PropertyError::NoAccessor)};
  if (found.IsReadOnly()) return {State::ReadOnly, explain(PropertyError::ReadOnly)};
  return {State::Connected, {}};
}

}  // namespace

bool IsNamed(const VtrString& name, const wchar_t* marker) {
  return !name.IsEmpty() && name != marker;
}

bool HasCategory(const IDataSourceProvider& scope, const VtrString& category) {
  return std::ranges::count(scope.GetCategories(), category) != 0;
}

VtrString ScopeName(const IDataSourceProvider& scope) {
  VtrString name;
  for (const auto& category : scope.GetCategories()) {
    name += name.IsEmpty() ? category : L"," + category;
  }
  return name;
}

BindStatus ExplainUnbound(const VtrString& source) {
  if (!IsNamed(source, Framework::nullDataMarker)) {
    return {State::Unbound, L"The bind names no data source."};
  }
  return {State::Unbound,
          VtrString().Format(L"The bind to data source \"%s\" names no property.", source)};
}

BindStatus ExplainNoScope(const Wish& wish) {
  return {State::NoProvider,
          VtrString().Format(
              L"There is no scope to look for data source \"%s\" with its property \"%s\".",
              wish.source, wish.property)};
}

BindStatus ExplainNoContext(const Wish& wish, const VtrString& context) {
  return {State::NoContext,
          VtrString().Format(L"No scope here or further out has the category \"%s\", where data "
                             L"source \"%s\" with its property \"%s\" is looked for.",
                             context, wish.source, wish.property)};
}

BindStatus ExplainWaiting(const Wish& wish) {
  return {State::NoSource,
          VtrString().Format(L"Data source \"%s\" is not looked for until a scope has told its "
                             L"listeners of another change.",
                             wish.source)};
}

BindStatus ExplainMissing(const Wish& wish, IDataSourceProvider& scope) {
  const IDataSourceProvider* displacing = nullptr;
  VisitOwned(scope, [&](const auto& source, const VtrString& name, const auto& itsScope) {
    if (displacing != nullptr || name != wish.source) return;
    if (itsScope.GetLocalDataSourceInstance(name) != &source) displacing = &itsScope;
  });
  if (displacing != nullptr) return Displaced(wish, *displacing);
  if (CanBeBuilt(wish.source, scope)) {
    return {State::NotBuilt,
            VtrString().Format(L"Data source \"%s\" could be built, but nobody has asked for it.",
                               wish.source)};
  }
  const VtrString similar = SimilarSource(wish.source, scope);
  if (!similar.IsEmpty()) {
    return {State::CaseDiffers,
            VtrString().Format(L"There is no data source \"%s\", but one named \"%s\".",
                               wish.source, similar)};
  }
  return {State::NoSource,
          VtrString().Format(L"There is no data source \"%s\" to have a property \"%s\".",
                             wish.source, wish.property)};
}

BindStatus ExplainFound(const Wish& wish, IDataSourceProvider& scope, IDataSource& found) {
  BindStatus status = ExplainProperty(wish, found);
  if (status.IsConnected()) return status;
  const IDataSourceProvider* shadowing = nullptr;
  bool isFoundThere = false;
  VisitOwned(scope, [&](IDataSource& source, const VtrString& name, const auto& itsScope) {
    if (shadowing != nullptr || name != wish.source) return;
    if (!ExplainProperty(wish, source).IsConnected()) return;
    shadowing = &itsScope;
    isFoundThere = itsScope.GetLocalDataSourceInstance(name) == &source;
  });
  if (shadowing == nullptr) return status;
  return isFoundThere ? Hidden(wish, *shadowing, scope, found) : Displaced(wish, *shadowing);
}

BindStatus ExplainUnreachable(const Wish& wish, IDataSource& found) {
  if (const ShownRecord* const record = ShownRecord::Of(&found)) {
    return {State::NoProperty, ExplainAbsence(*record, wish.source, wish.property)};
  }
  return {State::WrongType,
          ReflectionAccess::Explain(PropertyError::NoAccessor, &found, wish.property, wish.plain)};
}

BindStatus ExplainRestless(const VtrString& source, const VtrString& list) {
  return {
      State::Restless,
      VtrString().Format(L"The callbacks of list \"%s\" of data source \"%s\" have changed it a "
                         L"thousand times within one operation.",
                         list, source)};
}

BindStatus ExplainHeard(const Wish& wish, IDataSourceProvider& scope) {
  bool isHeard = false;
  bool isKnown = false;
  VisitOwned(scope, [&](IDataSource& source, const VtrString& name, const auto& /*itsScope*/) {
    if (name.CompareNoCase(wish.source) != 0) return;
    isHeard = true;
    isKnown = isKnown || HasProperty(source, wish.property);
  });
  if (!isHeard) return ExplainMissing(wish, scope);
  if (isKnown) return {State::Connected, {}};
  return {State::Connected,
          VtrString().Format(L"Changes of \"%s\" are listened for, but data source \"%s\" lists no "
                             L"property of that name.",
                             wish.property, wish.source)};
}

}  // namespace DataBinding::details

#include "Explanation.h"

#include "DataBinding/BindTypes.h"
#include "DataBinding/DataSourceProvider.h"
#include "DataBinding/IDataSource.h"
#include "DataBinding/IDataSourceConstructor.h"
#include "DataBinding/IDataSourceRegistrar.h"
#include "DataBinding/PropertyAccess.h"

namespace DataBinding::details {

namespace {

using Framework::BindState;
using Framework::BindStatus;

/// Calls visit(source, its name) for the sources that the scope and those further out own.
template <class Visitor>
void VisitOwned(IDataSourceProvider& nearest, const Visitor& visit) {
  for (IDataSourceProvider* scope = &nearest; scope != nullptr; scope = scope->GetParent()) {
    const auto* owner = dynamic_cast<const DataSourceProvider*>(scope);
    if (owner == nullptr) continue;
    owner->VisitDataSources([&](IDataSource& source) {
      if (const wchar_t* name = source.GetDataSourceName()) visit(source, VtrString(name));
    });
  }
}

/// True when a scope would build the source if it were asked for it.
bool CanBeBuilt(const VtrString& name, IDataSourceProvider& nearest) {
  auto* constructor = IDataSourceRegistrar::GetInstance().FindConstructor(name);
  if (constructor == nullptr) return false;
  const wchar_t* categories = constructor->GetCategories();
  IDataSourceProvider* scope = &nearest;
  while (scope != nullptr && !scope->MatchCategory(categories)) scope = scope->GetParent();
  return scope != nullptr;
}

/// A name that differs from the wanted one in case only, of a source that is there or could be.
VtrString SimilarSource(const VtrString& wanted, IDataSourceProvider& nearest) {
  VtrString similar;
  VisitOwned(nearest, [&](IDataSource& /*source*/, const VtrString& name) {
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

BindStatus Shadowed(const Wish& wish) {
  return {BindState::Shadowed,
          VtrString().Format(
              L"A data source \"%s\" cannot be found: another one had its name when it was added.",
              wish.source)};
}

BindStatus NoSuchProperty(const Wish& wish, IDataSource& source) {
  const VtrString similar = SimilarProperty(wish.property, source);
  if (!similar.IsEmpty()) {
    return {BindState::CaseDiffers,
            VtrString().Format(L"Data source \"%s\" has no property \"%s\", but one named \"%s\".",
                               wish.source, wish.property, similar)};
  }
  if (wish.plain == nullptr) {
    return {BindState::NoProperty, VtrString().Format(L"Data source \"%s\" has no property \"%s\".",
                                                      wish.source, wish.property)};
  }
  return {BindState::NoProperty,
          ReflectionAccess::Explain(PropertyError::Absent, &source, wish.property, *wish.plain)};
}

/// Whether this source has the property, without regard to other sources.
BindStatus ExplainProperty(const Wish& wish, IDataSource& source) {
  if (wish.plain == nullptr) {
    const bool isKnown =
        !runtime_type<void>::Get().IsSameType(&source.GetDelegateType(wish.property));
    return isKnown ? BindStatus{BindState::Connected, {}} : NoSuchProperty(wish, source);
  }
  const auto found = ReflectionAccess::Find(&source, wish.property, *wish.plain, *wish.readOnly);
  const auto explain = [&](PropertyError error) {
    return ReflectionAccess::Explain(error, &source, wish.property, *wish.plain);
  };
  if (found.error == PropertyError::Absent) return NoSuchProperty(wish, source);
  if (found.error != PropertyError::None) return {BindState::WrongType, explain(found.error)};
  if (found.accessor.IsEmpty()) return {BindState::WrongType, explain(PropertyError::NoAccessor)};
  if (found.isReadOnly) return {BindState::ReadOnly, explain(PropertyError::ReadOnly)};
  return {BindState::Connected, {}};
}

}  // namespace

bool IsNamed(const VtrString& name, const wchar_t* marker) {
  return !name.IsEmpty() && name != marker;
}

BindStatus ExplainUnbound(const VtrString& source) {
  if (!IsNamed(source, Framework::nullDataMarker)) {
    return {BindState::Unbound, L"The bind names no data source."};
  }
  return {BindState::Unbound,
          VtrString().Format(L"The bind to data source \"%s\" names no property.", source)};
}

BindStatus ExplainNoScope(const Wish& wish) {
  return {BindState::NoProvider,
          VtrString().Format(
              L"There is no scope to look for data source \"%s\" with its property \"%s\".",
              wish.source, wish.property)};
}

BindStatus ExplainNoContext(const Wish& wish, const VtrString& context) {
  return {BindState::NoContext,
          VtrString().Format(L"No scope here or further out has the category \"%s\", where data "
                             L"source \"%s\" with its property \"%s\" is looked for.",
                             context, wish.source, wish.property)};
}

BindStatus ExplainMissing(const Wish& wish, IDataSourceProvider& scope) {
  bool isOwned = false;
  VisitOwned(scope, [&](IDataSource& /*source*/, const VtrString& name) {
    isOwned = isOwned || name == wish.source;
  });
  if (isOwned) return Shadowed(wish);
  if (CanBeBuilt(wish.source, scope)) {
    return {BindState::NotBuilt,
            VtrString().Format(L"Data source \"%s\" could be built, but nobody has asked for it.",
                               wish.source)};
  }
  const VtrString similar = SimilarSource(wish.source, scope);
  if (!similar.IsEmpty()) {
    return {BindState::CaseDiffers,
            VtrString().Format(L"There is no data source \"%s\", but one named \"%s\".",
                               wish.source, similar)};
  }
  return {BindState::NoSource,
          VtrString().Format(L"There is no data source \"%s\" to have a property \"%s\".",
                             wish.source, wish.property)};
}

BindStatus ExplainFound(const Wish& wish, IDataSourceProvider& scope, IDataSource& found) {
  BindStatus status = ExplainProperty(wish, found);
  if (status.IsConnected()) return status;
  bool isShadowed = false;
  VisitOwned(scope, [&](IDataSource& source, const VtrString& name) {
    if (isShadowed || &source == &found || name != wish.source) return;
    isShadowed = ExplainProperty(wish, source).IsConnected();
  });
  return isShadowed ? Shadowed(wish) : status;
}

}  // namespace DataBinding::details

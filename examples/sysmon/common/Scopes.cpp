// SPDX-License-Identifier: Apache-2.0
#include "Scopes.h"

#include <type_traits>

#include <DataBinding/datasource/IDataSource.h>
#include <DataBinding/property/PropertyAccess.h>
#include <DataBinding/registrar/IDataSourceRegistrar.h>

namespace Sysmon {

std::optional<Value> ReadValue(IDataSource* source, const VtrString& property) {
  std::optional<Value> result;
  const auto readAnyOf = [&]<class... Types>(std::type_identity<std::variant<Types...>>) {
    DataBinding::VisitProperty<Types...>(source, property,
                                         [&](const auto& value) { result = Value(value); });
  };
  readAnyOf(std::type_identity<Value>());
  return result;
}

std::vector<VtrString> SourceNames(const IDataSourceProvider& scope) {
  // A scope without categories builds nothing itself, but the registrar would list all names for
  // it.
  if (scope.GetCategories().empty()) return {};
  return DataBinding::IDataSourceRegistrar::GetInstance().GetRegisteredDataSources(
      scope.GetCategories());
}

}  // namespace Sysmon

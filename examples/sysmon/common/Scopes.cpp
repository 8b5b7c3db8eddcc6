// SPDX-License-Identifier: Apache-2.0
#include "Scopes.h"

#include <type_traits>

#include <DataBinding/datasource/IDataSource.h>
#include <DataBinding/property/PropertyAccess.h>

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

}  // namespace Sysmon

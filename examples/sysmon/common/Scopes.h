// SPDX-License-Identifier: Apache-2.0
/// Functions by which a view finds values by name, the sources of a scope, and scopes by category.
#pragma once

#include <optional>
#include <vector>

#include <DataBinding/datasource/IDataSourceProvider.h>

#include "Quantities.h"

namespace Sysmon {

using DataBinding::IDataSource;
using DataBinding::IDataSourceProvider;

/// The value of a property. Nothing for a null source, an unknown name, or an event.
[[nodiscard]] std::optional<Value> ReadValue(IDataSource* source, const VtrString& property);

/// The names of the sources that belong to this very scope, built or not.
[[nodiscard]] std::vector<VtrString> SourceNames(const IDataSourceProvider& scope);

}  // namespace Sysmon

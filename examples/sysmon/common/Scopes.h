// SPDX-License-Identifier: Apache-2.0
/// Reads values of sources by name.
#pragma once

#include <optional>

#include <DataBinding/datasource/IDataSourceProvider.h>

#include "Quantities.h"

namespace Sysmon {

using DataBinding::IDataSource;
using DataBinding::IDataSourceProvider;

/// The value of a property. Nothing for a null source, an unknown name, or an event.
[[nodiscard]] std::optional<Value> ReadValue(IDataSource* source, const VtrString& property);

}  // namespace Sysmon

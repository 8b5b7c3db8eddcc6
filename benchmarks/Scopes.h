// SPDX-License-Identifier: Apache-2.0
/// Scopes with data sources in them, for benchmarks that measure a whole tree of scopes.
#pragma once

#include <cstddef>
#include <vector>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "Names.h"

namespace Benchmarks {

class PlainSource : public DataBinding::NamedDataSource {
 public:
  using NamedDataSource::NamedDataSource;
};

using Scope = DataBinding::DataSourceProvider;
using PlainSourcePtr = DataBinding::DataSourcePtr<PlainSource>;

[[nodiscard]] inline PlainSourcePtr MakeSource(Scope& scope, const std::wstring& name) {
  return DataBinding::MakeDataSource<PlainSource>(&scope, DataBinding::VtrString(name.c_str()));
}

[[nodiscard]] inline std::vector<PlainSourcePtr> MakeSources(Scope& scope, const Texts& names) {
  std::vector<PlainSourcePtr> sources;
  sources.reserve(names.size());
  for (const auto& name : names) sources.push_back(MakeSource(scope, name));
  return sources;
}

}  // namespace Benchmarks

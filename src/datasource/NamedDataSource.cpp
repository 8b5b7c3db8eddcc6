// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/datasource/NamedDataSource.h"

#include <utility>

namespace DataBinding {

NamedDataSource::NamedDataSource(VtrString name) : dataSourceName(std::move(name)) {}
NamedDataSource::~NamedDataSource() = default;

const wchar_t* NamedDataSource::GetDataSourceName() { return dataSourceName; }

IDataSourceBase* NamedDataSource::GetDataSourceBaseImpl() { return this; }

}  // namespace DataBinding

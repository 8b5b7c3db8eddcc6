#include "DataBinding/NamedDataSource.h"

#include <utility>

namespace DataBinding {

NamedDataSource::NamedDataSource(VtrString dataSourceName) : name(std::move(dataSourceName)) {}
NamedDataSource::~NamedDataSource() = default;

const wchar_t* NamedDataSource::GetDataSourceName() { return name; }

IDataSourceBase* NamedDataSource::GetDataSourceBaseImpl() { return this; }

}  // namespace DataBinding

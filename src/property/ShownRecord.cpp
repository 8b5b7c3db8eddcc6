// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/property/details/ShownRecord.h"

#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding::details {

ShownRecord::~ShownRecord() = default;

const ShownRecord* ShownRecord::Of(const IDataSource* source) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): asking changes nothing in the source
  return Of(const_cast<IDataSource*>(source));
}

ShownRecord* ShownRecord::Of(IDataSource* source) {
  if (source == nullptr || ReflectionAccess::IsEnding(*source)) return nullptr;
  return IVantorGenericDetail::FindInterfaceProxy(source).As<ShownRecord>();
}

VtrString ExplainAbsence(const ShownRecord& record, const VtrString& source,
                         const VtrString& property) {
  return VtrString().Format(L"Property \"%s\" of data source \"%s\" has no value: %s.", property,
                            source, record.WhyAbsent());
}

}  // namespace DataBinding::details

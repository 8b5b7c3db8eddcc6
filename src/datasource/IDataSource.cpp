// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/datasource/IDataSource.h"

#include <cstring>

#include "DataBinding/datasource/IDataSourceBase.h"

namespace DataBinding {

IDataSourceBase::~IDataSourceBase() = default;

IDataSource::IDataSource() = default;
IDataSource::~IDataSource() = default;

void IDataSource::Destroy(IDataSource* source) {
  if (source == nullptr) return;
  try {
    source->PreDestroy();
  } catch (const std::exception& exception) {
    throw std::exception(exception);  // the header says why it is sliced
  }
  const details::HandlerFailures failures;
  source->Destroy();
  failures.RethrowFirst();
}

bool IDataSource::FindInterfaceByIID(const GUID& id, void** out) {
  if (out == nullptr) return false;
  if (std::memcmp(&id, &InterfaceId<IDataSource>::value, sizeof(GUID)) != 0) return false;
  *out = this;
  return true;
}

void IDataSource::PreDestroy() {}

IDataSourceBase* IDataSource::GetDataSourceBase() { return GetDataSourceBaseImpl(); }

}  // namespace DataBinding

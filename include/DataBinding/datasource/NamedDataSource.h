// SPDX-License-Identifier: Apache-2.0
/// A data source that is told its name: the shortest way to write one.
///
///   class Thermostat : public NamedDataSource {
///    public:
///     Thermostat() : NamedDataSource(L"Thermostat") {}
///     Property<double> target{this, L"Target", 21.0};
///     Property<double> actual{this, L"Actual", 19.5};
///     ComputedProperty<bool> heating{this, L"Heating", [this] { return *actual < *target; },
///                                    actual, target};
///   };
#pragma once

#include "DataBinding/datasource/DataSourceImpl.h"
#include "DataBinding/datasource/IDataSourceBase.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

class DATABINDING_API NamedDataSource : public DataSourceImpl, public IDataSourceBase {
 public:
  /// The name stays as it is given; providers match it case included.
  explicit NamedDataSource(VtrString name);

  const wchar_t* GetDataSourceName() override;
  /// This object.
  IDataSourceBase* GetDataSourceBaseImpl() override;

 protected:
  ~NamedDataSource() override;

 private:
  VtrString dataSourceName;
};

}  // namespace DataBinding

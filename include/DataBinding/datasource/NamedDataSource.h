// SPDX-License-Identifier: Apache-2.0
/// NamedDataSource is a data source that is told its name. Deriving from it is the shortest way to
/// write a source.
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
#include "DataBinding/foundation/details/KeptLiteral.h"

namespace DataBinding {

class DATABINDING_API NamedDataSource : public DataSourceImpl, public IDataSourceBase {
 public:
  /// Keeps the name as it is given. Providers match it case included. Sources that are given the
  /// same literal share one string, which is kept until the process ends.
  ///@{
  explicit NamedDataSource(VtrString name);
  template <VtrPlatform::details::Literal Text>
  explicit NamedDataSource(Text& name)
      : NamedDataSource(VtrPlatform::details::KeptLiteral(VtrStringView(name))) {}
  ///@}

  const wchar_t* GetDataSourceName() override;
  /// Returns this object.
  IDataSourceBase* GetDataSourceBaseImpl() override;

 protected:
  ~NamedDataSource() override;

 private:
  VtrString dataSourceName;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A data source whose properties follow a record, which listeners to events write.
///
/// It is built on demand, and reads its record then and each time that it is refreshed. The model
/// knows nothing of it but this class, which it gets from the source's IDataSourceBase.
#pragma once

#include <DataBinding/datasource/IDataSourceProvider.h>
#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/property/Property.h>
#include <DataBinding/property/PropertyBatch.h>

namespace Sysmon {

class SampledSource : public DataBinding::NamedDataSource {
 public:
  /// Sets the properties to the record's figures. Each property that has changed is announced once.
  void Refresh() {
    const DataBinding::PropertyBatch batch(*this);
    TakeOver();
  }

 protected:
  using NamedDataSource::NamedDataSource;

  void PostConstruct() override {
    NamedDataSource::PostConstruct();
    Refresh();
  }

 private:
  virtual void TakeOver() = 0;
};

/// Refreshes a source if it is there and follows a record.
inline void RefreshSource(DataBinding::IDataSource* source) {
  if (source == nullptr) return;
  auto* const sampled = dynamic_cast<SampledSource*>(source->GetDataSourceBase());
  if (sampled != nullptr) sampled->Refresh();
}

/// Refreshes the sources that have been built in a scope.
inline void RefreshSources(const DataBinding::IDataSourceProvider& scope) {
  scope.VisitDataSources([](auto& source) { RefreshSource(&source); });
}

}  // namespace Sysmon

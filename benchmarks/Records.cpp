// SPDX-License-Identifier: Apache-2.0
// Records of the library, what their parts cost, and records that one writes by hand.

#include "Records.h"

#include <memory>

#include "DataBinding/datasource/DataSourceImpl.h"
#include "DataBinding/datasource/IDataSourceBase.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/property/Property.h"

namespace Benchmarks {

namespace {

using DataBinding::DataSourcePtr;
using DataBinding::Property;
using DataBinding::VtrString;

/// A source whose name is that of its class.
class BareSource : public DataBinding::DataSourceImpl, public DataBinding::IDataSourceBase {
 public:
  const wchar_t* GetDataSourceName() override { return L"Record"; }
  DataBinding::IDataSourceBase* GetDataSourceBaseImpl() override { return this; }
};

class Record : public BareSource {
 public:
  Property<int> number{this, L"Number"};
  Property<int> age{this, L"Age"};
  Property<double> height{this, L"Height"};
  Property<double> weight{this, L"Weight"};
  Property<bool> isActive{this, L"Active"};
  Property<VtrString> remark{this, L"Remark"};
};

class LongerRecord : public Record {
 public:
  Property<int> visits{this, L"Visits"};
};

template <class Source>
struct OurRecord {
  using Made = DataSourcePtr<Source>;
  static Made Make() { return DataBinding::MakeDataSource<Source>(nullptr); }
};

struct PlainRecord {
  struct Values {
    int number = 0;
    int age = 0;
    double height = 0;
    double weight = 0;
    bool isActive = false;
    std::wstring remark;
  };

  using Made = std::unique_ptr<Values>;
  static Made Make() { return std::make_unique<Values>(); }
};

[[maybe_unused]] const bool recordsMeasured[] = {
    MeasureRecord<OurRecord<Record>>("ours"),
    MeasureRecord<PlainRecord>("floor"),
};

/// Measures the memory of a source without properties, and of each property that is added to it.
void MemoryOfParts(benchmark::State& state) {
  for (auto _ : state) {
    state.counters["source"] = BytesOfEach(memorySample, &MakeRecords<OurRecord<BareSource>>);
    const double six = BytesOfEach(memorySample, &MakeRecords<OurRecord<Record>>);
    const double seven = BytesOfEach(memorySample, &MakeRecords<OurRecord<LongerRecord>>);
    state.counters["property"] = seven - six;
  }
}

[[maybe_unused]] const bool partsMeasured = [] {
  if (heapIsCounted) Enter("memory/parts", "ours", &MemoryOfParts).Iterations(1);
  return true;
}();

}  // namespace

}  // namespace Benchmarks
